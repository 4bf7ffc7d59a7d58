#include_next <cfgmgr32.h>
#pragma once

#define DN_HAS_PROBLEM 0x00000400
