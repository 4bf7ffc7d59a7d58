// What a platform raises. The one exception type that crosses the seam.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "platform/unicode.h"

namespace lanvoss::platform {

// HRESULTs that this code base names itself; a backend may raise any other.
inline constexpr std::uint32_t kErrorCancelled = 0x800704C7;
inline constexpr std::uint32_t kErrorIllegalMethodCall = 0x8000000E;
inline constexpr std::uint32_t kErrorBounds = 0x8000000B;
inline constexpr std::uint32_t kErrorClosed = 0x80000013;
inline constexpr std::uint32_t kErrorFail = 0x80004005;
inline constexpr std::uint32_t kErrorNotFound = 0x80070490;
inline constexpr std::uint32_t kErrorOutOfMemory = 0x8007000E;
inline constexpr std::uint32_t kErrorInvalidArgument = 0x80070057;

class Error : public std::exception {
 public:
  Error(std::uint32_t hresult, std::u16string message)
      : hresult_(hresult), message_(std::move(message)), what_(Utf16ToUtf8(message_)) {}

  std::uint32_t Hresult() const { return hresult_; }
  const std::u16string& Message() const { return message_; }
  // The message in UTF-8, for a host that catches std::exception.
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  std::uint32_t hresult_;
  std::u16string message_;
  std::string what_;
};

// The operation was cancelled, for example because the user declined it.
class CancelledError : public Error {
 public:
  explicit CancelledError(std::u16string message = u"The operation was canceled by the user.")
      : Error(kErrorCancelled, std::move(message)) {}
};

}  // namespace lanvoss::platform
