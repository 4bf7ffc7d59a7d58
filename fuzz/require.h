// What every target uses.
#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the process, which is a finding to the fuzzer, when something does not hold.
inline void Require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
  }
}
