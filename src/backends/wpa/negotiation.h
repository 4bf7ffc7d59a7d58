// From a device's address to a link with it: by negotiating a new group, or by an invitation into
// the stored group.
//
// Both read their events from an inbox that was made before. So the keeper of the link also finds
// the later events of the link in it.
#pragma once

#include <optional>
#include <string>

#include "backends/wpa/link.h"
#include "backends/wpa/supplicant.h"
#include "platform/wifi_direct.h"

namespace lanvoss::wpa {

struct Negotiation {
  platform::DevicePairingResultStatus status = platform::DevicePairingResultStatus::Failed;
  std::optional<Link> link = {};  // of Paired
};

// Pairs: forms a group whose credentials are stored. `ownerIntent`: the wish to own it, 0 to 15.
Negotiation Negotiate(Supplicant& supplicant, Inbox& inbox, const std::string& address,
                      int ownerIntent);

// Brings the stored group with the device up again. None: there is none, or the device does not
// come.
std::optional<Link> Invite(Supplicant& supplicant, Inbox& inbox, const std::string& address);

// Whether the event reports the end of the link.
bool IsEndOf(const Link& link, const Message& message);

}  // namespace lanvoss::wpa
