// The addresses of a network interface.
#pragma once

#include <string>

namespace lanvoss::wpa {

// Raises platform::Error when the address is none, or this user may not set it.
void SetInterfaceAddress(const std::string& interface, const std::string& address,
                         const std::string& mask);
void ClearInterfaceAddress(const std::string& interface);

// By IPv6 the system takes addresses and a default route from any neighbour that says it is a
// router; not on this interface any more. Without effect where this user may not change that.
void IgnoreRouters(const std::string& interface);

}  // namespace lanvoss::wpa
