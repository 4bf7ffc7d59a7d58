// WiFiDirect on wpa_supplicant.
#pragma once

#include <memory>
#include <string>

#include "platform/system.h"
#include "platform/wifi_direct.h"

namespace lanvoss::wpa {

// `interface`: the adapter's network interface, for example wlan0; empty for the first adapter that
// can. wpa_supplicant is first spoken to when the radio is first used; what is missing is raised as
// platform::Error then.
std::shared_ptr<platform::WiFiDirect> CreateRadio(std::shared_ptr<platform::System> system,
                                                  std::string interface);

}  // namespace lanvoss::wpa
