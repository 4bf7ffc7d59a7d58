#include "host_supplicant.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "backends/wpa/control_socket.h"
#include "camera.h"

namespace lanvoss::test {
namespace {

constexpr char kSockets[] = "/run/wpa_supplicant/";
constexpr char kConfiguration[] = "/run/host.conf";
constexpr char kProcessFile[] = "/run/host.pid";
constexpr char kFirstInterface[] = "wlan0";

}  // namespace

bool RunCommand(const std::string& command) { return std::system(command.c_str()) == 0; }

std::string FirstLine(const std::string& path) {
  std::string line;
  std::ifstream file(path);
  std::getline(file, line);
  return line;
}

HostSupplicant::~HostSupplicant() {
  if (!isAsAtFirst_) {
    Kill();
    Rename(kFirstInterface);
    Start();
  }
}

void HostSupplicant::Kill() {
  isAsAtFirst_ = false;
  const std::string process = FirstLine(kProcessFile);
  if (!process.empty()) {
    RunCommand("kill -9 " + process + "; rm " + kProcessFile);
    EXPECT_TRUE(Await([&] { return !RunCommand("kill -0 " + process + " 2>/dev/null"); }));
  }
  std::filesystem::remove_all(kSockets);
}

void HostSupplicant::Start(const std::string& settings) {
  std::filesystem::copy_file("/lab/host.conf", kConfiguration,
                             std::filesystem::copy_options::overwrite_existing);
  std::ofstream(kConfiguration, std::ios::app) << settings;
  EXPECT_TRUE(RunCommand("wpa_supplicant -B -i " + interface_ + " -D nl80211 -c " + kConfiguration +
                         " -P " + kProcessFile + " >/dev/null"));
  EXPECT_TRUE(Await([this] { return std::filesystem::exists(kSockets + SocketName()); }));
}

void HostSupplicant::Rename(const std::string& interface) {
  if (interface != interface_) {
    EXPECT_TRUE(RunCommand("ip link set " + interface_ + " down; ip link set " + interface_ +
                           " name " + interface));
    interface_ = interface;
  }
}

std::string HostSupplicant::Ask(const std::string& command) const {
  return AskAt(SocketName(), command);
}

std::string HostSupplicant::AskAt(const std::string& socketName, const std::string& command) {
  return wpa::Ask(kSockets + socketName, command);
}

// Cut by wpa_supplicant, as an interface's name would be.
std::string HostSupplicant::SocketName() const {
  constexpr std::size_t kLongestName = 15;
  return ("p2p-dev-" + interface_).substr(0, kLongestName);
}

}  // namespace lanvoss::test
