#include "backends/wpa/dhcp.h"

#include <linux/capability.h>
#include <sstream>

#include "backends/wpa/fail.h"
#include "backends/wpa/limits.h"

namespace lanvoss::wpa {
namespace {

// A server for one network without a router, which writes no file.
ChildProcess::Settings ServerSettings(const std::string& interface) {
  return {.arguments = {"dnsmasq", "--conf-file=/dev/null", "--keep-in-foreground",
                        "--user=",   // it has no rights to give up
                        "--port=0",  // no name service
                        "--interface=" + interface, "--bind-interfaces", "--except-interface=lo",
                        "--dhcp-range=" + std::string(kFirstAddress) + "," + kLastAddress + "," +
                            kNetworkMask + ",1h",
                        "--dhcp-option=3",  // no router
                        "--dhcp-option=6",  // no name server
                        "--dhcp-authoritative",
                        "--no-ping",  // no other device is there yet, so it need not ask
                        "--leasefile-ro", "--pid-file", "--log-facility=-"},
          // For the port, and for answers to a device that has no address so far.
          .capabilities = {CAP_NET_BIND_SERVICE, CAP_NET_ADMIN}};
}

// udhcpc runs it at its start, and with the lease that it has got.
constexpr char kScript[] = "#!/bin/sh\necho \"lease $ip $serverid\"\n";

ChildProcess::Settings ClientSettings(const std::string& interface, const NamelessFile& script) {
  return {.arguments = {"udhcpc", "-f", "-i", interface, "-s", NamelessFile::Path(), "-t", "10",
                        "-T", "1"},
          .capabilities = {CAP_NET_BIND_SERVICE, CAP_NET_RAW},
          .file = &script};
}

}  // namespace

DhcpServer::DhcpServer(const std::string& interface)
    : interface_(interface), server_(ServerSettings(interface)) {}

std::string DhcpServer::AwaitLease(const std::string& hardwareAddress, Clock::time_point deadline) {
  while (const auto line = server_.NextLine(deadline)) {
    if (auto address = LeasedAddress(*line, interface_, hardwareAddress); !address.empty()) {
      return address;
    }
  }
  return {};
}

// dnsmasq prints, for example
//   dnsmasq-dhcp[123]: DHCPACK(p2p-wlan0-0) 192.168.49.10 02:00:00:00:01:00 name
//   dnsmasq-dhcp[123]: DHCPDECLINE(p2p-wlan0-0) 192.168.49.10 02:00:00:00:01:00 the device's reason
std::string LeasedAddress(std::string_view line, const std::string& interface,
                          const std::string& hardwareAddress) {
  std::istringstream words{std::string(line)};
  std::string program;
  std::string report;
  std::string address;
  std::string hardware;
  words >> program >> report >> address >> hardware;
  return report == "DHCPACK(" + interface + ")" && hardware == hardwareAddress ? address
                                                                               : std::string();
}

DhcpClient::DhcpClient(const std::string& interface)
    : script_(kScript), client_(ClientSettings(interface, script_)) {}

std::optional<Lease> DhcpClient::AwaitLease(Clock::time_point deadline) {
  bool hasScript = false;
  while (const auto line = client_.NextLine(deadline)) {
    std::istringstream words(*line);
    std::string word;
    Lease lease;
    words >> word;
    if (word == "lease") {
      hasScript = true;
      if (words >> lease.address >> lease.server) {
        return lease;
      }
    }
  }
  if (!hasScript) {
    Fail("udhcpc cannot run its script");  // which it does not say
  }
  return std::nullopt;
}

}  // namespace lanvoss::wpa
