// The persistent groups that wpa_supplicant keeps. A device with one is paired.
#pragma once

#include <optional>
#include <string>

#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

// The number of the group with the device of this address; none when there is none.
std::optional<std::string> StoredGroupWith(const Supplicant& supplicant,
                                           const std::string& address);

// Removes a group, for good where wpa_supplicant may write its configuration. False: it is refused.
bool Forget(const Supplicant& supplicant, const std::string& group);
// Removes all groups with the device.
void ForgetAll(const Supplicant& supplicant, const std::string& address);

}  // namespace lanvoss::wpa
