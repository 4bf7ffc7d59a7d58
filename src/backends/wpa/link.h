// A group that is up, with one device in it, and the addresses of both ends.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

struct Link {
  std::string interface;   // of the group; a new name for every group
  std::string peer;        // the device's address
  std::string local = {};  // IP addresses
  std::string remote = {};
  // The DHCP server or client of the group, where the handshake gave no addresses.
  std::shared_ptr<const void> dhcp = {};
};

// From a group that has just started to a link with addresses. None: the device did not come, or
// there were no addresses; the group has been removed then. Raises platform::Error when the
// addresses cannot be used.
std::optional<Link> AwaitLink(const Supplicant& supplicant, Inbox& inbox, const Message& started,
                              const std::string& peer);

// Whether this event reports the start of a group, and what it says of it.
bool IsGroupStart(const Message& message);
bool IsOwnGroup(const Message& started);  // this machine owns it
std::string InterfaceOf(const Message& started);

}  // namespace lanvoss::wpa
