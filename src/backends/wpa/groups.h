// The Wi-Fi Direct groups that are up on the adapter, whoever has started them.
#pragma once

#include <string>
#include <vector>

#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

// The names of groups' interfaces; kDevicePrefix begins with it too.
inline constexpr char kGroupPrefix[] = "p2p-";

struct Group {
  std::string interface;
  std::string ssid;      // as wpa_supplicant prints it
  bool isOwner = false;  // this machine owns it
};

std::vector<Group> GroupsOf(const Supplicant& supplicant);

// The addresses of the devices in the group.
std::vector<std::string> DevicesIn(const Supplicant& supplicant, const Group& group);

// Whether a group of the adapter can have this interface: one that wpa_supplicant makes for a
// group, or the adapter's own.
bool CanHaveGroup(const Supplicant& supplicant, const std::string& interface);

// What a new group needs, whoever has started it: the devices in it are strangers to this machine.
void SecureGroup(const std::string& interface);

// Takes the group down.
void RemoveGroup(const Supplicant& supplicant, const std::string& interface);

// The interface of a group goes with the group, but the adapter's own remains: takes the group's
// address away from it.
void ClearAddressAfter(const std::string& interface);

}  // namespace lanvoss::wpa
