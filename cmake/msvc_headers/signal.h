#include_next <signal.h>
#pragma once

typedef int sig_atomic_t;
