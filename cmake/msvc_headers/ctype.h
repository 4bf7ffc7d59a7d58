#include_next <ctype.h>
#pragma once

extern "C" {
int _islower_l(int, _locale_t);
int _isupper_l(int, _locale_t);
}
