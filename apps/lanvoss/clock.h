// The time of day, as in the log but with microseconds.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace lanvoss::program {

// A time of the system's clock as local time, in microseconds since the beginning of 1970.
std::int64_t LocalTimeUs(
    std::chrono::system_clock::time_point time = std::chrono::system_clock::now());

// "2026-11-23T07:52:45.123456"
std::string FormatTime(std::int64_t localTimeUs);

}  // namespace lanvoss::program
