// WiFiDirect on the Windows Runtime.
#pragma once

#include <memory>

#include "platform/system.h"
#include "platform/wifi_direct.h"

namespace lanvoss::windows {

// What blocks waits on events of `system`, which therefore owns all time.
std::shared_ptr<platform::WiFiDirect> CreateRadio(std::shared_ptr<platform::System> system);

}  // namespace lanvoss::windows
