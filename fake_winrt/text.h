// Texts given out by the classes.
#pragma once

#include <string_view>

#include "backends/windows/winrt_string.h"

namespace lanvoss::fake_winrt {

// A text that its receiver has to delete.
inline HSTRING NewText(std::u16string_view text) {
  HSTRING string = nullptr;
  windows::Check(windows::WinrtString::Give(text, &string));
  return string;
}

}  // namespace lanvoss::fake_winrt
