// What runs on this machine, as far as the system tells every user.
#pragma once

#include <string>
#include <vector>

namespace lanvoss::wpa {

bool IsRunning(const std::string& program);

// The network interfaces of adapters for Wi-Fi.
std::vector<std::string> WirelessInterfaces();

// The configuration file of the wpa_supplicant that was started for this interface; empty when none
// was, or it has none.
std::string ConfigurationOf(const std::string& interface);

// Whether one of the files, or of the files in the folders, contains the text.
bool AnyContains(const std::vector<std::string>& paths, const std::string& text);

// Whether a DHCP server could have the port of servers.
bool IsServerPortFree();

}  // namespace lanvoss::wpa
