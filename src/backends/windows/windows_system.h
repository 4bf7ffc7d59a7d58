// System on Win32 and Winsock.
#pragma once

#include <memory>

#include "platform/system.h"

namespace lanvoss::windows {

std::shared_ptr<platform::System> CreateSystem();

}  // namespace lanvoss::windows
