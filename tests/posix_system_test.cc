#include "world.h"
