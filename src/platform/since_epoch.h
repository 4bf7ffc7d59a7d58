// Local times as numbers.
#pragma once

#include <chrono>

#include "platform/system.h"

namespace lanvoss::platform {

// From the beginning of 1970 to `time`, whose date must exist.
constexpr std::chrono::milliseconds SinceEpoch(const LocalTime& time) {
  namespace chrono = std::chrono;
  const chrono::sys_days day(chrono::year(time.year) / time.month / time.day);
  // In milliseconds from the first term on: some standard libraries count days, hours and minutes
  // in 32 bits, and the minutes end in the year 6053.
  return chrono::milliseconds(day.time_since_epoch()) + chrono::hours(time.hour) +
         chrono::minutes(time.minute) + chrono::seconds(time.second) +
         chrono::milliseconds(time.millisecond);
}

// With such a library a sum that overflows here does not compile.
static_assert(SinceEpoch({30827, 12, 31, 23, 59, 59, 999}).count() == 910'670'515'199'999);

}  // namespace lanvoss::platform
