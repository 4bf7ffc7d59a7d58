// HRESULTs of the platform and the exceptions of the contract.
#pragma once

#include <windows.h>

namespace lanvoss::windows {

// Raises platform::Error, or CancelledError for a code of cancellation, with the platform's message
// for the calling thread. Must be called right after the failed call.
[[noreturn]] void Raise(HRESULT failure);

inline void Check(HRESULT result) {
  if (FAILED(result)) {
    Raise(result);
  }
}

// For a function that the platform calls: the present exception, as the HRESULT to return. Only for
// a handler of exceptions.
HRESULT ResultOfException() noexcept;

// For a failure of a handler that nobody else learns of.
void TellDebugger(HRESULT failure) noexcept;

}  // namespace lanvoss::windows
