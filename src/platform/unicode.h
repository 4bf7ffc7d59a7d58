// UTF-16 to UTF-8 and back, for the backends whose system has no conversion of its own.
//
// What cannot be converted (an unpaired surrogate, a malformed byte) becomes U+FFFD.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace lanvoss::platform {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

namespace unicode {

inline bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
inline bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

inline void AppendUtf8(std::string& out, char32_t point) {
  const auto byte = [&out](char32_t value) { out.push_back(static_cast<char>(value)); };
  if (point < 0x80) {
    byte(point);
  } else if (point < 0x800) {
    byte(0xC0 | (point >> 6));
    byte(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    byte(0xE0 | (point >> 12));
    byte(0x80 | ((point >> 6) & 0x3F));
    byte(0x80 | (point & 0x3F));
  } else {
    byte(0xF0 | (point >> 18));
    byte(0x80 | ((point >> 12) & 0x3F));
    byte(0x80 | ((point >> 6) & 0x3F));
    byte(0x80 | (point & 0x3F));
  }
}

inline void AppendUtf16(std::u16string& out, char32_t point) {
  if (point < 0x10000) {
    out.push_back(static_cast<char16_t>(point));
  } else {
    out.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
  }
}

// Decodes the sequence that starts at `at` and moves `at` after it; a malformed one is a
// replacement character for its first byte alone.
inline char32_t NextUtf8(std::string_view text, std::size_t& at) {
  const auto lead = static_cast<unsigned char>(text[at++]);
  if (lead < 0x80) {
    return lead;
  }
  const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || text.size() - at < more) {
    return kReplacementCharacter;
  }
  char32_t point = lead & (0x3F >> more);
  for (std::size_t i = 0; i < more; ++i) {
    const auto byte = static_cast<unsigned char>(text[at + i]);
    if ((byte & 0xC0) != 0x80) {
      return kReplacementCharacter;
    }
    point = (point << 6) | (byte & 0x3F);
  }
  const char32_t smallest = more == 1 ? 0x80 : more == 2 ? 0x800 : 0x10000;
  if (point < smallest || point > 0x10FFFF || IsHighSurrogate(point) || IsLowSurrogate(point)) {
    return kReplacementCharacter;
  }
  at += more;
  return point;
}

}  // namespace unicode

inline std::string Utf16ToUtf8(std::u16string_view wide) {
  std::string narrow;
  narrow.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    char32_t point = wide[i];
    if (unicode::IsHighSurrogate(point) && i + 1 < wide.size() &&
        unicode::IsLowSurrogate(wide[i + 1])) {
      point = 0x10000 + ((point - 0xD800) << 10) + (wide[++i] - 0xDC00);
    } else if (unicode::IsHighSurrogate(point) || unicode::IsLowSurrogate(point)) {
      point = kReplacementCharacter;
    }
    unicode::AppendUtf8(narrow, point);
  }
  return narrow;
}

inline std::u16string Utf8ToUtf16(std::string_view narrow) {
  std::u16string wide;
  wide.reserve(narrow.size());
  for (std::size_t at = 0; at < narrow.size();) {
    unicode::AppendUtf16(wide, unicode::NextUtf8(narrow, at));
  }
  return wide;
}

}  // namespace lanvoss::platform
