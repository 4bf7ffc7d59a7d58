// Whether the addresses that a device has chosen for a link can do no harm.
#pragma once

#include <string>

namespace lanvoss::wpa {

// Both must be addresses of hosts in one private network of 254, differ, and the network must be in
// use on no other interface of this machine. Raises platform::Error otherwise, with the reason.
void CheckGivenAddresses(const std::string& local, const std::string& remote,
                         const std::string& interface);

// An interface, other than this one, that is in the network of a link with this address; empty
// without one.
std::string OtherUserOfNetwork(const std::string& address, const std::string& interface);

}  // namespace lanvoss::wpa
