#include "backends/wpa/groups.h"

#include "backends/wpa/adapter.h"
#include "backends/wpa/credentials.h"
#include "backends/wpa/interface_address.h"
#include "backends/wpa/limits.h"

namespace lanvoss::wpa {
namespace {

// The network name of every group begins with this. The mode in STATUS is no help: it is that of
// any network where the device owns the group.
constexpr char kSsidPrefix[] = "DIRECT-";
constexpr char kOwnerMode[] = "P2P GO";

bool HasOwnInterface(const std::string& interface) {
  return interface.starts_with(kGroupPrefix) && !interface.starts_with(kDevicePrefix);
}

// The devices that have joined a group of this machine's.
std::vector<std::string> ClientsOf(const Supplicant& supplicant, const std::string& interface) {
  std::vector<std::string> devices;
  std::string command = "STA-FIRST";
  for (int count = 0; count < kLargestGroup; ++count) {
    const std::vector<std::string> lines = Lines(supplicant.AskAbout(interface, command));
    if (lines.empty() || lines.front().starts_with("FAIL")) {
      break;
    }
    for (const std::string& line : lines) {
      if (const std::string address = LineOf(line, "p2p_device_addr"); !address.empty()) {
        devices.push_back(address);
      }
    }
    command = "STA-NEXT " + lines.front();
  }
  return devices;
}

}  // namespace

std::vector<Group> GroupsOf(const Supplicant& supplicant) {
  std::vector<Group> groups;
  for (const std::string& interface : Lines(supplicant.Ask("INTERFACES"))) {
    if (!CanHaveGroup(supplicant, interface)) {
      continue;
    }
    const std::string status = supplicant.AskAbout(interface, "STATUS");
    const std::string ssid = LineOf(status, "ssid");
    if (ssid.starts_with(kSsidPrefix)) {
      groups.push_back({interface, ssid, LineOf(status, "mode") == kOwnerMode});
    }
  }
  return groups;
}

std::vector<std::string> DevicesIn(const Supplicant& supplicant, const Group& group) {
  if (group.isOwner) {
    return ClientsOf(supplicant, group.interface);
  }
  for (const StoredGroup& stored : StoredGroups(supplicant)) {
    if (stored.ssid == group.ssid) {
      return {stored.owner};
    }
  }
  return {};
}

bool CanHaveGroup(const Supplicant& supplicant, const std::string& interface) {
  return HasOwnInterface(interface) || IsSocketOf(supplicant.SocketName(), interface);
}

// The adapter's own interface has networks of the user's too.
void SecureGroup(const std::string& interface) {
  if (HasOwnInterface(interface)) {
    IgnoreRouters(interface);
  }
}

void RemoveGroup(const Supplicant& supplicant, const std::string& interface) {
  supplicant.Do("P2P_GROUP_REMOVE " + interface);
  ClearAddressAfter(interface);
}

void ClearAddressAfter(const std::string& interface) {
  if (!HasOwnInterface(interface)) {
    ClearInterfaceAddress(interface);
  }
}

}  // namespace lanvoss::wpa
