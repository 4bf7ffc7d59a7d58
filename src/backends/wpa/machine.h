// What runs on this machine, as far as the system lets every user see it.
#pragma once

#include <string>
#include <vector>

namespace lanvoss::wpa {

// The line of a configuration that gives wpa_supplicant its control sockets.
inline constexpr char kControlSetting[] = "ctrl_interface=DIR=/run/wpa_supplicant GROUP=netdev";
// After a change of a configuration.
inline constexpr char kAndStartAgain[] = ", and start wpa_supplicant again";

bool IsRunning(const std::string& program);

// The network interfaces of adapters for Wi-Fi.
std::vector<std::string> WirelessInterfaces();

// The configuration file of the wpa_supplicant that was started for this interface; empty when none
// was, or it has none.
std::string ConfigurationOf(const std::string& interface);

// The configuration file that Debian's service for this interface reads, and how to start a
// wpa_supplicant with it.
std::string ServiceFile(const std::string& interface);
std::string HowToStartService(const std::string& interface);

// Whether one of the files, or of the files in the folders, has a line that begins with the key and
// contains the text. A comment is no such line.
bool AnySets(const std::vector<std::string>& paths, const std::string& key,
             const std::string& text);

// Whether a DHCP server could have the port of servers.
bool IsServerPortFree();

}  // namespace lanvoss::wpa
