// Time stamps in the lines of any log.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace lanvoss::log {

struct Stamp {
  std::int64_t timeUs;  // from 1970-01-01 00:00 of the stamp's own zone, or from 00:00 of its day
  bool isDated;
};

// The last stamp with a date in `text`, otherwise the last time of day: "2026-11-23 07:52:45.123",
// "2026/11/23T07:52:45,123456", "07:52:45".
std::optional<Stamp> FindStamp(std::string_view text);

}  // namespace lanvoss::log
