#include "backends/wpa/dhcp.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <system_error>
#include <thread>

#include "backends/wpa/fail.h"
#include "backends/wpa/limits.h"

namespace lanvoss::wpa {
namespace {

constexpr char kLeaseFile[] = "leases";
constexpr char kScriptFile[] = "script";
constexpr char kPidFile[] = "pid";

std::filesystem::path NewDirectory() {
  std::string path = std::filesystem::temp_directory_path() / "lanvoss-dhcp-XXXXXX";
  if (mkdtemp(path.data()) == nullptr) {
    Fail(path, errno);
  }
  return path;
}

// Reads the file again and again until `find` sees in one of its lines what it looks for.
template <typename Find>
bool Await(const std::filesystem::path& path, Clock::time_point deadline, Find find) {
  while (Clock::now() < deadline) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
      if (find(std::istringstream(line))) {
        return true;
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(kLeasePollMs));
  }
  return false;
}

// A server for one network without a router.
std::vector<std::string> ServerArguments(const std::string& interface,
                                         const PrivateDirectory& directory) {
  return {"dnsmasq",
          "--conf-file=/dev/null",
          "--keep-in-foreground",
          "--user=root",
          "--port=0",  // no name service
          "--interface=" + interface,
          "--bind-interfaces",
          "--except-interface=lo",
          "--dhcp-range=" + std::string(kFirstAddress) + "," + kLastAddress + "," + kNetworkMask +
              ",1h",
          "--dhcp-option=3",  // no router
          "--dhcp-option=6",  // no name server
          "--dhcp-authoritative",
          "--no-ping",  // no other device is there yet, so it need not ask
          "--pid-file=" + (directory / kPidFile).string(),
          "--dhcp-leasefile=" + (directory / kLeaseFile).string()};
}

// udhcpc calls a script with the lease that it has got.
std::string WriteScript(const PrivateDirectory& directory) {
  std::string path = directory / kScriptFile;
  const std::string leases = directory / kLeaseFile;
  std::ofstream(path) << "#!/bin/sh\n"
                      << "[ -z \"$ip\" ] || echo \"$ip $serverid\" > '" << leases << "'\n";
  chmod(path.c_str(), S_IRWXU);
  return path;
}

}  // namespace

PrivateDirectory::PrivateDirectory() : path_(NewDirectory()) {}
PrivateDirectory::~PrivateDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

DhcpServer::DhcpServer(const std::string& interface)
    : server_(ServerArguments(interface, directory_)) {}

std::string DhcpServer::AwaitLease(const std::string& hardwareAddress,
                                   Clock::time_point deadline) const {
  std::string expiry;
  std::string hardware;
  std::string address;
  const bool found = Await(directory_ / kLeaseFile, deadline, [&](std::istringstream line) {
    return line >> expiry >> hardware >> address && hardware == hardwareAddress;
  });
  return found ? address : std::string();
}

DhcpClient::DhcpClient(const std::string& interface)
    : client_({"udhcpc", "-f", "-i", interface, "-s", WriteScript(directory_), "-t", "10", "-T",
               "1"}) {}

std::optional<Lease> DhcpClient::AwaitLease(Clock::time_point deadline) const {
  Lease lease;
  const bool found = Await(directory_ / kLeaseFile, deadline, [&](std::istringstream line) {
    return static_cast<bool>(line >> lease.address >> lease.server);
  });
  return found ? std::optional(lease) : std::nullopt;
}

}  // namespace lanvoss::wpa
