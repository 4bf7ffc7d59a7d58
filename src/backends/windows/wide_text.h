// Windows has its UTF-16 in wchar_t, the platform contract in char16_t.
#pragma once

#include <string_view>

namespace lanvoss::windows {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline const wchar_t* AsWide(const char16_t* text) {
  return reinterpret_cast<const wchar_t*>(text);
}
inline wchar_t* AsWide(char16_t* text) { return reinterpret_cast<wchar_t*>(text); }

inline std::u16string_view AsUtf16(std::wstring_view text) {
  return {reinterpret_cast<const char16_t*>(text.data()), text.size()};
}

}  // namespace lanvoss::windows
