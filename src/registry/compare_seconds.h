#pragma once

#include <cstdint>

#include "platform/system.h"

namespace lanvoss {

// How many whole seconds `a` is later than `b`; milliseconds do not count. A date that does not
// exist is older than every one that does. Clamped to 32 bits.
std::int32_t CompareSeconds(const platform::LocalTime& a, const platform::LocalTime& b);

}  // namespace lanvoss
