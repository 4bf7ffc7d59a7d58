// Small text helpers of the log, the table and the cache.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system.h"

namespace lanvoss {

// `wide` in the system's ANSI code page, up to its first zero character.
std::string ToAnsi(platform::System& system, std::u16string_view wide);

// printf into a text, as long as it becomes: no line is ever cut.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

// Milliseconds from `since` to `now`, two readings of the clock, across its wrap too.
inline std::int32_t ElapsedMs(std::int32_t since, std::int32_t now) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(now) -
                                   static_cast<std::uint32_t>(since));
}

}  // namespace lanvoss
