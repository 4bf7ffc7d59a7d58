// HRESULTs of the platform and the exceptions of the contract.
#pragma once

#include <windows.h>

namespace lanvoss::windows {

// Raises platform::Error, or CancelledError where that is what the code means, with the message
// that the platform left for the calling thread. To be called right after the call that failed.
[[noreturn]] void Raise(HRESULT failure);

inline void Check(HRESULT result) {
  if (FAILED(result)) {
    Raise(result);
  }
}

// For a function that the platform calls: what is being thrown, as the HRESULT to return. Only for
// a handler of exceptions.
HRESULT ResultOfException() noexcept;

}  // namespace lanvoss::windows
