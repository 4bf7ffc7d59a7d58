// Small text helpers of the log, the table and the cache.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system.h"

namespace lanvoss {

// `wide` in the system's ANSI code page, up to its first zero character.
std::string ToAnsi(platform::System& system, std::u16string_view wide);

// Appends a decimal number with zeros in front, up to `width` digits.
void AppendNumber(std::string& text, unsigned number, int width = 1);

// Appends a time stamp as it is in the log and in the cache file: "2024-03-01 09:05:03.040".
void AppendStamp(std::string& text, const platform::LocalTime& time);

// Milliseconds from `since` to `now`, two readings of the clock, across its wrap too.
inline std::int32_t ElapsedMs(std::int32_t since, std::int32_t now) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(now) -
                                   static_cast<std::uint32_t>(since));
}

}  // namespace lanvoss
