// What every object that the library hands in has to answer.
#pragma once

#include <string>
#include <windows.h>

#include "session.h"

namespace lanvoss::fake_winrt {

// Finds fault with an object that does not answer for itself as the platform expects it to.
void CheckIdentity(Session& session, const std::string& name, IUnknown& object, REFIID iid);

// For a null pointer where an object belongs.
[[noreturn]] void RaiseNull(Session& session, const std::string& name);

}  // namespace lanvoss::fake_winrt
