// Checks of the objects that the library passes in.
#pragma once

#include <string>
#include <windows.h>

#include "session.h"

namespace lanvoss::fake_winrt {

// Reports an object whose interfaces are not what the platform expects.
void CheckIdentity(Session& session, const std::string& name, IUnknown& object, REFIID iid);

// For a null pointer where an object belongs.
[[noreturn]] void RaiseNull(Session& session, const std::string& name);

}  // namespace lanvoss::fake_winrt
