// WiFiDirect on wpa_supplicant.
#pragma once

#include <memory>
#include <string>

#include "platform/system.h"
#include "platform/wifi_direct.h"

namespace lanvoss::wpa {

// `interface`: the adapter's network interface, for example wlan0; empty for the first adapter that
// supports Wi-Fi Direct. The first use of the radio is the first use of wpa_supplicant; what is
// missing is raised as platform::Error then.
std::shared_ptr<platform::WiFiDirect> CreateRadio(std::shared_ptr<platform::System> system,
                                                  std::string interface);

}  // namespace lanvoss::wpa
