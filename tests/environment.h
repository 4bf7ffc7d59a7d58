// Settings of a test run.
#pragma once

#include <cstdlib>
#include <string>

namespace lanvoss::test {

// Empty when it is not set.
inline std::string Environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody sets it
  return value == nullptr ? "" : value;
}

}  // namespace lanvoss::test
