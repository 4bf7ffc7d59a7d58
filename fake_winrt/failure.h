// Exceptions of the contract as failures of the Windows Runtime.
#pragma once

#include <windows.h>

#include "platform/error.h"

namespace lanvoss::fake_winrt {

// What is being thrown, as the platform's error. Only for a handler of exceptions.
platform::Error CurrentError();

// Leaves the message for the calling thread and returns the code.
HRESULT Report(const platform::Error& error);

// Runs the body of a method; no exception leaves it.
template <typename Body>
HRESULT Reported(Body body) noexcept {
  try {
    body();
    return S_OK;
  } catch (...) {
    return Report(CurrentError());
  }
}

}  // namespace lanvoss::fake_winrt
