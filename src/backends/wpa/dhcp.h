// Addresses for a group whose handshake has allocated none: a server where this machine owns the
// group, a client where it does not. Both are programs of the system, dnsmasq and udhcpc, which run
// as long as their objects live.
#pragma once

#include <optional>
#include <string>

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

struct Lease {
  std::string address;
  std::string server;
};

class DhcpClient {
 public:
  // Raises platform::Error when there is no udhcpc.
  explicit DhcpClient(const std::string& interface);

  // What the owner of the group gives; none when the time is up. Raises platform::Error when udhcpc
  // has ended.
  std::optional<Lease> AwaitLease(Clock::time_point deadline);

 private:
  const NamelessFile script_;
  ChildProcess client_;
};

}  // namespace lanvoss::wpa
