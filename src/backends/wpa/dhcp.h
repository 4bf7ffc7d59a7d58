// Addresses for a group whose handshake has allocated none: a server where this machine owns the
// group, a client where it does not. Both are programs of the system, dnsmasq and udhcpc, which run
// as long as their objects live.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "backends/wpa/child_process.h"
#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

// A directory that exists as long as the object.
class PrivateDirectory {
 public:
  PrivateDirectory();
  ~PrivateDirectory();
  PrivateDirectory(const PrivateDirectory&) = delete;
  PrivateDirectory& operator=(const PrivateDirectory&) = delete;

  std::filesystem::path operator/(const char* name) const { return path_ / name; }

 private:
  const std::filesystem::path path_;
};

class DhcpServer {
 public:
  // The interface must have its own address. Raises platform::Error when there is no dnsmasq.
  explicit DhcpServer(const std::string& interface);

  // The address that the device with this hardware address has taken; empty when the time is up.
  std::string AwaitLease(const std::string& hardwareAddress, Clock::time_point deadline) const;

 private:
  const PrivateDirectory directory_;
  const ChildProcess server_;
};

struct Lease {
  std::string address;
  std::string server;
};

class DhcpClient {
 public:
  // Raises platform::Error when there is no udhcpc.
  explicit DhcpClient(const std::string& interface);

  // What the owner of the group gives; none when the time is up.
  std::optional<Lease> AwaitLease(Clock::time_point deadline) const;

 private:
  const PrivateDirectory directory_;
  const ChildProcess client_;
};

}  // namespace lanvoss::wpa
