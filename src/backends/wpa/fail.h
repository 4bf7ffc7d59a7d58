// How this backend's failures leave it.
#pragma once

#include <string>
#include <system_error>

#include "platform/error.h"
#include "platform/unicode.h"

namespace lanvoss::wpa {

[[noreturn]] inline void Fail(const std::string& text) {
  throw platform::Error(platform::kErrorFail, platform::Utf8ToUtf16(text));
}

// `error`: an errno.
[[noreturn]] inline void Fail(const std::string& what, int error) {
  Fail(what + ": " + std::generic_category().message(error));
}

}  // namespace lanvoss::wpa
