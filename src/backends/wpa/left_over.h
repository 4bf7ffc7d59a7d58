// Links that a process has left behind.
#pragma once

#include <string>

namespace lanvoss::wpa {

// Takes down every group that a device of this name is in, whoever has started it, on the adapter
// with this network interface; for an empty text, on the first one that supports Wi-Fi Direct.
// False: there was none. Raises platform::Error when wpa_supplicant does not answer.
bool CloseLinksTo(const std::string& deviceName, const std::string& interface);

}  // namespace lanvoss::wpa
