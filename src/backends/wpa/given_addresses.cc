#include "backends/wpa/given_addresses.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include "backends/wpa/fail.h"

namespace lanvoss::wpa {
namespace {

struct Network {
  std::uint32_t address;
  std::uint32_t mask;

  bool Contains(std::uint32_t host) const { return (host & mask) == (address & mask); }
};

// The networks of private addresses.
constexpr Network kPrivate[] = {
    {0x0A000000, 0xFF000000}, {0xAC100000, 0xFFF00000}, {0xC0A80000, 0xFFFF0000}};

// kNetworkMask as a number.
constexpr std::uint32_t kLinkMask = 0xFFFFFF00;

// Of 32 bits in the machine's order. Raises platform::Error when it is no host's address.
std::uint32_t HostAddress(const std::string& text) {
  in_addr parsed{};
  if (inet_pton(AF_INET, text.c_str(), &parsed) != 1) {
    Fail("the device gives an address that is none: " + text);
  }
  const std::uint32_t address = ntohl(parsed.s_addr);
  const std::uint32_t host = address & ~kLinkMask;
  if (host == 0 || host == ~kLinkMask ||
      std::none_of(std::begin(kPrivate), std::end(kPrivate),
                   [&](const Network& network) { return network.Contains(address); })) {
    Fail("the device gives an address that is not one of a private network: " + text);
  }
  return address;
}

std::uint32_t Number(const sockaddr* address) {
  return ntohl(reinterpret_cast<const sockaddr_in*>(address)->sin_addr.s_addr);
}

// The addresses of all interfaces of this machine.
class InterfaceAddresses {
 public:
  InterfaceAddresses() {
    if (getifaddrs(&first_) != 0) {
      Fail("the addresses of this machine", errno);
    }
  }
  ~InterfaceAddresses() { freeifaddrs(first_); }
  InterfaceAddresses(const InterfaceAddresses&) = delete;
  InterfaceAddresses& operator=(const InterfaceAddresses&) = delete;

  // An interface, other than this one, that has an address in the network of the link or whose
  // network contains it; empty without one.
  std::string OtherUserOf(const Network& link, const std::string& interface) const {
    for (const ifaddrs* entry = first_; entry != nullptr; entry = entry->ifa_next) {
      if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET ||
          entry->ifa_netmask == nullptr || entry->ifa_name == interface) {
        continue;
      }
      const Network other{Number(entry->ifa_addr), Number(entry->ifa_netmask)};
      if (other.Contains(link.address) || link.Contains(other.address)) {
        return entry->ifa_name;
      }
    }
    return {};
  }

 private:
  ifaddrs* first_ = nullptr;
};

}  // namespace

void CheckGivenAddresses(const std::string& local, const std::string& remote) {
  const Network link{HostAddress(local), kLinkMask};
  const std::uint32_t peer = HostAddress(remote);
  if (peer == link.address || !link.Contains(peer)) {
    Fail("the device gives addresses that cannot reach each other: " + local + ", " + remote);
  }
}

void CheckIsAlone(const std::string& interface, const std::string& address) {
  if (const std::string other = OtherUserOfNetwork(address, interface); !other.empty()) {
    Fail("the device gives an address of the network of " + other + ": " + address);
  }
}

std::string OtherUserOfNetwork(const std::string& address, const std::string& interface) {
  return InterfaceAddresses().OtherUserOf({HostAddress(address), kLinkMask}, interface);
}

}  // namespace lanvoss::wpa
