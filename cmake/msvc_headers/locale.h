#include_next <locale.h>
#pragma once

// libc++ expects MB_CUR_MAX here.
#include <stdlib.h>
