#include_next <stdlib.h>
#pragma once

extern "C" {
int ___mb_cur_max_func();
#define MB_CUR_MAX ___mb_cur_max_func()

double _strtod_l(const char*, char**, _locale_t);
float _strtof_l(const char*, char**, _locale_t);

errno_t _dupenv_s(char**, size_t*, const char*);
#ifndef _CRT_SECURE_NO_WARNINGS
__declspec(deprecated) char* getenv(const char*);
#endif
}
