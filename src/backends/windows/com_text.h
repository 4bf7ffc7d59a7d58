// A text that COM gave out.
#pragma once

#include <oleauto.h>
#include <string_view>

#include "backends/windows/wide_text.h"

namespace lanvoss::windows {

class ComText {
 public:
  ComText() = default;
  ~ComText() { SysFreeString(text_); }
  ComText(const ComText&) = delete;
  ComText& operator=(const ComText&) = delete;

  // Where a method puts its result. Only for a text that is empty.
  BSTR* Out() { return &text_; }
  std::u16string_view Text() const { return AsUtf16({text_, SysStringLen(text_)}); }

 private:
  BSTR text_ = nullptr;
};

}  // namespace lanvoss::windows
