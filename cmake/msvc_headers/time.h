#include_next <time.h>
#pragma once

struct timespec {
  time_t tv_sec;
  long tv_nsec;
};

extern "C" errno_t localtime_s(struct tm*, const time_t*);
