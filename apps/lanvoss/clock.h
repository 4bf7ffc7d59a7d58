// The time of day, as in the log but with microseconds.
#pragma once

#include <cstdint>
#include <string>

namespace lanvoss::program {

// Local time, in microseconds since the beginning of 1970.
std::int64_t LocalTimeUs();

// "2026-11-23T07:52:45.123456"
std::string FormatTime(std::int64_t localTimeUs);

}  // namespace lanvoss::program
