// System on Linux. The ANSI code page is UTF-8, independent of the locale: a host names devices in
// UTF-8 here.
#pragma once

#include <memory>

#include "platform/system.h"

namespace lanvoss::posix {

std::shared_ptr<platform::System> CreateSystem();

}  // namespace lanvoss::posix
