// Whether the addresses that a device has chosen for a link can do no harm.
#pragma once

#include <string>

namespace lanvoss::wpa {

// Both raise platform::Error with the reason.
//
// The addresses must be those of two hosts in one private network of 254.
void CheckGivenAddresses(const std::string& local, const std::string& remote);
// No interface of this machine but this one may be in the network of the address.
void CheckIsAlone(const std::string& interface, const std::string& address);

// An interface, other than this one, that is in the network of a link with this address; empty
// without one.
std::string OtherUserOfNetwork(const std::string& address, const std::string& interface);

}  // namespace lanvoss::wpa
