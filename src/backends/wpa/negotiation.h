// From a device's address to a link with it: a new group that is negotiated, or the stored one into
// which it is invited.
//
// The events of both are taken from an inbox that was made before, so that whoever keeps the link
// finds in it what has happened to the link since.
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

// Whether the event tells of the end of the link.
bool IsEndOf(const Link& link, const Message& message);

}  // namespace lanvoss::wpa
