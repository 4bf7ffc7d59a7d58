// Texts of the Windows Runtime.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <winstring.h>

#include "backends/windows/com_pointer.h"
#include "backends/windows/wide_text.h"
#include "backends/windows/winrt_error.h"

namespace lanvoss::windows {

class WinrtString {
 public:
  WinrtString() = default;
  explicit WinrtString(std::u16string_view text) {
    Check(WindowsCreateString(AsWide(text.data()), static_cast<UINT32>(text.size()), &string_));
  }
  WinrtString(WinrtString&& other) noexcept : string_(std::exchange(other.string_, nullptr)) {}
  ~WinrtString() { WindowsDeleteString(string_); }

  // Takes over a text that the caller owns.
  static WinrtString Adopt(HSTRING owned) {
    WinrtString string;
    string.string_ = owned;
    return string;
  }

  HSTRING Get() const { return string_; }
  std::u16string Text() const { return TextOf(string_); }

  static std::u16string TextOf(HSTRING string) {
    UINT32 length = 0;
    const wchar_t* text = WindowsGetStringRawBuffer(string, &length);
    return std::u16string(AsUtf16({text, length}));
  }

  // A copy that its receiver has to delete.
  static HRESULT Give(std::u16string_view text, HSTRING* receiver) {
    return WindowsCreateString(AsWide(text.data()), static_cast<UINT32>(text.size()), receiver);
  }

 private:
  HSTRING string_ = nullptr;  // null is the empty text
};

// Calls a method that gives out a text.
template <typename Interface>
std::u16string ReadText(const ComPointer<Interface>& object,
                        HRESULT (STDMETHODCALLTYPE Interface::*method)(HSTRING*)) {
  return WinrtString::Adopt(Read<HSTRING>(object, method)).Text();
}

}  // namespace lanvoss::windows
