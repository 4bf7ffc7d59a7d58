// The time of day, as the log tells it, and finer.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace lanvoss::program {

// Local time, in microseconds since the beginning of 1970.
std::int64_t LocalTimeUs();

// "2026-11-23T07:52:45.123456"
std::string FormatTime(std::int64_t localTimeUs);

// A time of the system's clock in local time. Each kind of system does it its own way.
std::tm LocalTime(std::time_t time);

}  // namespace lanvoss::program
