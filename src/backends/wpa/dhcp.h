// Addresses for a group whose handshake has allocated none: a server where this machine owns the
// group, a client where it does not. Both are programs of the system, dnsmasq and udhcpc, which run
// as long as their objects live.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "backends/wpa/child_process.h"
#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

class DhcpServer {
 public:
  // The interface must have its own address. Raises platform::Error when there is no dnsmasq.
  explicit DhcpServer(const std::string& interface);

  // The address that the device with this hardware address has taken; empty when the time is up.
  // Raises platform::Error when dnsmasq has ended, for example because another server has the port.
  std::string AwaitLease(const std::string& hardwareAddress, Clock::time_point deadline);

 private:
  const std::string interface_;
  ChildProcess server_;
};

// The address in a line of dnsmasq's that reports the lease of the device with this hardware
// address; empty in any other line. Other lines may contain what the device chooses.
std::string LeasedAddress(std::string_view line, const std::string& interface,
                          const std::string& hardwareAddress);

struct Lease {
  std::string address;
  std::string server;
};

class DhcpClient {
 public:
  // Raises platform::Error when there is no udhcpc.
  explicit DhcpClient(const std::string& interface);

  // What the owner of the group gives; none when the time is up. Raises platform::Error when udhcpc
  // has ended, or cannot report.
  std::optional<Lease> AwaitLease(Clock::time_point deadline);

 private:
  const NamelessFile script_;
  ChildProcess client_;
};

}  // namespace lanvoss::wpa
