#include_next <stdio.h>
#pragma once

// As in Visual C++, which warns of these functions unless it is told not to.
#ifndef _CRT_SECURE_NO_WARNINGS
extern "C" {
__declspec(deprecated) FILE* fopen(const char*, const char*);
__declspec(deprecated) int sscanf(const char*, const char*, ...);
}
#endif
