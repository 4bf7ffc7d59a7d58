#include "backends/wpa/link.h"

#include <utility>

#include "backends/wpa/dhcp.h"
#include "backends/wpa/fail.h"
#include "backends/wpa/given_addresses.h"
#include "backends/wpa/groups.h"
#include "backends/wpa/interface_address.h"
#include "backends/wpa/limits.h"

namespace lanvoss::wpa {
namespace {

// In P2P-GROUP-STARTED: the interface, and the part that this machine plays in the group.
constexpr std::size_t kInterfaceWord = 0;
constexpr std::size_t kRoleWord = 1;
constexpr char kOwnerRole[] = "GO";
// In AP-STA-CONNECTED: the hardware address that the device has in the group.
constexpr std::size_t kStationWord = 0;

// This machine owns the group: the device joins it and is given an address.
bool AwaitClient(Inbox& inbox, Link& link) {
  SetInterfaceAddress(link.interface, kOwnerAddress, kNetworkMask);
  link.local = kOwnerAddress;
  const auto deadline = After(kGroupMs);
  while (const auto message = inbox.Next(deadline)) {
    if (message->name == "P2P-GROUP-REMOVED" && message->Word(kInterfaceWord) == link.interface) {
      return false;
    }
    if (message->name != "AP-STA-CONNECTED" || message->Field(kAddressField) != link.peer) {
      continue;
    }
    link.remote = message->Field("ip_addr");
    if (link.remote.empty()) {
      const auto server = std::make_shared<DhcpServer>(link.interface);
      link.remote = server->AwaitLease(message->Word(kStationWord), After(kLeaseMs));
      link.dhcp = server;
    }
    if (link.remote.empty()) {
      return false;
    }
    // A device can report to the server what address it has, instead of asking for one.
    CheckGivenAddresses(link.local, link.remote);
    return true;
  }
  return false;
}

// The device owns the group and gives this machine an address, in the handshake or by DHCP.
bool JoinOwner(const Message& started, Link& link) {
  link.local = started.Field("ip_addr");
  link.remote = started.Field("go_ip_addr");
  if (link.local.empty() || link.remote.empty()) {
    const auto client = std::make_shared<DhcpClient>(link.interface);
    const auto lease = client->AwaitLease(After(kLeaseMs));
    if (!lease) {
      return false;
    }
    link.local = lease->address;
    link.remote = lease->server;
    link.dhcp = client;
  }
  CheckGivenAddresses(link.local, link.remote);
  CheckIsAlone(link.interface, link.local);
  // The mask that it gives is not taken: a wide one would send the traffic of other networks into
  // the link.
  SetInterfaceAddress(link.interface, link.local, kNetworkMask);
  return true;
}

}  // namespace

bool IsGroupStart(const Message& message) { return message.name == "P2P-GROUP-STARTED"; }
bool IsOwnGroup(const Message& started) { return started.Word(kRoleWord) == kOwnerRole; }
std::string InterfaceOf(const Message& started) { return started.Word(kInterfaceWord); }

std::optional<Link> AwaitLink(const Supplicant& supplicant, Inbox& inbox, const Message& started,
                              const std::string& peer) {
  Link link{.interface = InterfaceOf(started), .peer = peer};
  if (!CanHaveGroup(supplicant, link.interface)) {
    Fail("wpa_supplicant reports a group on " + link.interface +
         ", which is none of its interfaces");
  }
  try {
    const bool isUp = IsOwnGroup(started) ? AwaitClient(inbox, link) : JoinOwner(started, link);
    if (isUp) {
      return link;
    }
  } catch (...) {
    RemoveGroup(supplicant, link.interface);
    throw;
  }
  RemoveGroup(supplicant, link.interface);
  return std::nullopt;
}

}  // namespace lanvoss::wpa
