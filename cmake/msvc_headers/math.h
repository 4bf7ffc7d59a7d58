// Wine has macros where Visual C++ has templates, which libc++ uses.
#include_next <math.h>
#pragma once

#undef isfinite
#undef isinf
#undef isnan
#undef isnormal

template <class Number>
bool isfinite(Number);
template <class Number>
bool isinf(Number);
template <class Number>
bool isnan(Number);
template <class Number>
bool isnormal(Number);
