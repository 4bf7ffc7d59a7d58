// The devices for Wi-Fi that the device manager lists.
#pragma once

#include "backends/windows/machine.h"
#include "backends/windows/wlan.h"

namespace lanvoss::windows {

// With the states that the WLAN service reports for them.
WiFiAdapters ReadWiFiAdapters(platform::System& system, const WlanState& wlan);

}  // namespace lanvoss::windows
