// The IPv4 address of a network interface.
#pragma once

#include <string>

namespace lanvoss::wpa {

// Raises platform::Error when the address is none, or this user may not set it.
void SetInterfaceAddress(const std::string& interface, const std::string& address,
                         const std::string& mask);
void ClearInterfaceAddress(const std::string& interface);

}  // namespace lanvoss::wpa
