// The persistent groups that wpa_supplicant keeps. A device with one is paired.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

struct StoredGroup {
  std::string id;
  std::string ssid;   // as wpa_supplicant prints it
  std::string owner;  // its address; this machine's where it owns the group
};

std::vector<StoredGroup> StoredGroups(const Supplicant& supplicant);
// The group with the device of this address; none when there is none.
std::optional<StoredGroup> StoredGroupWith(const Supplicant& supplicant,
                                           const std::string& address);

// Removes a group, for good where wpa_supplicant may write its configuration. False: it is refused.
bool Forget(const Supplicant& supplicant, const StoredGroup& group);
// Removes all groups with the device.
void ForgetAll(const Supplicant& supplicant, const std::string& address);

}  // namespace lanvoss::wpa
