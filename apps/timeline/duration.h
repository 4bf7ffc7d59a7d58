// Times as texts for readers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace lanvoss::timeline {

inline constexpr std::int64_t kUsPerMs = 1'000;
inline constexpr std::int64_t kUsPerSecond = 1'000'000;

// "620 ms", "2.51 s", "12.3 s", "1 min 5 s", "2 h 5 min".
std::string DurationText(std::int64_t us);

// A place on an axis whose ticks are `stepUs` apart: "0.25 s", "12 s", "1:05", "2:01:05".
std::string PlaceText(std::int64_t us, std::int64_t stepUs);

// "2026-11-23 07:52:45.123" of a local time in microseconds from 1970.
std::string ClockText(std::int64_t us);
inline constexpr std::size_t kDateLength = 11;  // with the blank after it

}  // namespace lanvoss::timeline
