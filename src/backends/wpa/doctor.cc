#include "backends/wpa/doctor.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <grp.h>
#include <iterator>
#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "backends/wpa/adapter.h"
#include "backends/wpa/child_process.h"
#include "backends/wpa/control_socket.h"
#include "backends/wpa/given_addresses.h"
#include "backends/wpa/groups.h"
#include "backends/wpa/limits.h"
#include "backends/wpa/machine.h"
#include "backends/wpa/supplicant.h"
#include "backends/wpa/supplicant_examination.h"

namespace lanvoss::wpa {
namespace {

using platform::Finding;
using Findings = std::vector<Finding>;

bool HasCapability(unsigned capability) {
  __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3] = {};
  return syscall(SYS_capget, &header, data) == 0 &&
         (data[CAP_TO_INDEX(capability)].effective & CAP_TO_MASK(capability)) != 0;
}

// ---- This program, and the programs that it uses

void ExamineRights(Findings& findings) {
  std::error_code unknown;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown).string();
  const std::string remedy =
      "sudo setcap cap_net_raw,cap_net_admin,cap_net_bind_service+ep " + program;
  findings.push_back({.isFine = HasCapability(CAP_NET_RAW) && HasCapability(CAP_NET_ADMIN),
                      .what = "the right to send echo requests and to set addresses",
                      .remedy = remedy});
  findings.push_back({.isFine = HasCapability(CAP_NET_BIND_SERVICE),
                      .what = "the right to give and to ask for addresses by DHCP",
                      .remedy = remedy});
}

void ExamineProgram(Findings& findings, const std::string& program, const std::string& package,
                    const std::string& purpose) {
  findings.push_back({.isFine = IsInstalled(program),
                      .what = program + ", " + purpose,
                      .remedy = "sudo apt-get install " + package});
}

// ---- The adapter

// The network interface that this is about: the one that was asked for, else that of the adapter,
// else the machine's first.
std::string InterfaceToUse(const std::string& interface, const Adapter& adapter) {
  const std::vector<std::string> all = WirelessInterfaces();
  if (!interface.empty() || all.empty()) {
    return interface.empty() ? "wlan0" : interface;
  }
  const auto found = std::ranges::find_if(
      all, [&](const std::string& each) { return IsSocketOf(adapter.name, each); });
  return found == all.end() ? all.front() : *found;
}

// The group that may speak to wpa_supplicant; empty when only root may.
std::string GroupOfControlDirectory() {
  struct stat status {};
  group entry{};
  group* found = nullptr;
  std::array<char, 1024> texts;
  if (stat(kControlDirectory, &status) == 0 && status.st_gid != 0) {
    getgrgid_r(status.st_gid, &entry, texts.data(), texts.size(), &found);
  }
  return found == nullptr ? std::string() : found->gr_name;
}

std::string RemedyForRight(const std::string& interface) {
  const auto join = [](const std::string& group) {
    return "sudo usermod --append --groups " + group + " \"$USER\", and log in again";
  };
  if (const std::string group = GroupOfControlDirectory(); !group.empty()) {
    return join(group);
  }
  const std::string file = ConfigurationOf(interface);
  return "put the line " + std::string(kControlSetting) + " into " +
         (file.empty() ? ServiceFile(interface) : file) + kAndStartAgain + "; " + join("netdev");
}

std::string RemedyForName(const std::string& interface) {
  const std::vector<std::string> all = WirelessInterfaces();
  std::string name = "wlan0";
  for (int number = 1; std::ranges::count(all, name) > 0; ++number) {
    name = "wlan" + std::to_string(number);
  }
  return "sudo ip link set " + interface + " down; sudo ip link set " + interface + " name " + name;
}

std::string RemedyForControl(const std::string& interface) {
  const std::vector<std::string> all = WirelessInterfaces();
  if (std::ranges::count(all, interface) == 0) {
    return "name an adapter that there is, --radio wpa:" + all.front();
  }
  if (const std::string file = ConfigurationOf(interface); !file.empty()) {
    return "put the line " + std::string(kControlSetting) + " into " + file + kAndStartAgain;
  }
  return HowToStartService(interface);
}

// wpa_supplicant makes no interface for peer-to-peer whose name would be too long, before the
// version that cuts it.
bool IsNameTooLong(const std::string& interface, const std::string& version) {
  constexpr char kMajor[] = "2.";
  constexpr int kFirstThatCuts = 10;
  return DeviceInterface(interface) != kDevicePrefix + interface && version.starts_with(kMajor) &&
         std::atoi(version.c_str() + sizeof kMajor - 1) < kFirstThatCuts;
}

// Empty when nothing but the adapter itself is in the way.
std::string HowToAllowPeerToPeer(const Adapter& adapter, const std::string& interface) {
  const std::string version = Ask(adapter.socketPath, "GET version");
  if (IsNameTooLong(interface, version)) {
    return "wpa_supplicant " + version +
           " needs a name of at most 7 letters: " + RemedyForName(interface);
  }
  const std::string file = ConfigurationOf(interface);
  if (AnySets({file}, "p2p_disabled", "1")) {
    return "take the line p2p_disabled=1 out of " + file + kAndStartAgain;
  }
  return {};
}

std::string RemedyForPeerToPeer(const Adapter& adapter, const std::string& interface) {
  const std::string remedy = HowToAllowPeerToPeer(adapter, interface);
  return remedy.empty()
             ? "use another adapter, unless iw list shows P2P-client and P2P-GO for that of " +
                   interface
             : remedy;
}

std::string RemedyFor(const Adapter& adapter, const std::string& interface) {
  switch (adapter.problem) {
    case AdapterProblem::kNothing:
      return {};
    case AdapterProblem::kControl:
    case AdapterProblem::kInterface:
      return RemedyForControl(interface);
    case AdapterProblem::kRight:
      return RemedyForRight(interface);
    case AdapterProblem::kPeerToPeer:
      return RemedyForPeerToPeer(adapter, interface);
    case AdapterProblem::kOtherAdapter:
      return (IsRunning("NetworkManager") ? "sudo nmcli device set " + interface + " managed no, "
                                          : std::string()) +
             HowToStartService(interface);
    case AdapterProblem::kSwitchedOn:
      return "sudo rfkill unblock wifi";
  }
  return {};
}

// wpa_supplicant cuts the name of the interface for peer-to-peer, so two adapters can have the same
// one. The other one of them; empty without one.
std::string SharerOfName(const std::string& interface) {
  for (const std::string& other : WirelessInterfaces()) {
    if (other != interface && DeviceInterface(other) == DeviceInterface(interface)) {
      return other;
    }
  }
  return {};
}

void ExamineAdapter(Findings& findings, const Adapter& adapter, const std::string& interface) {
  if (const std::string other = SharerOfName(interface); !other.empty()) {
    findings.push_back(
        {.isFine = false,
         .what = interface + " and " + other + " begin alike, so that both are " +
                 DeviceInterface(interface) + " for wpa_supplicant",
         .remedy = RemedyForName(other) + "; and start the wpa_supplicants of both again"});
    return;
  }
  if (adapter.problem != AdapterProblem::kNothing && WirelessInterfaces().empty()) {
    findings.push_back({.isFine = false,
                        .what = "a Wi-Fi adapter: the system knows none",
                        .remedy = "connect an adapter that supports Wi-Fi Direct",
                        .meansNoAdapter = true});
    return;
  }
  findings.push_back({.isFine = adapter.problem == AdapterProblem::kNothing,
                      .what = Explain(adapter),
                      .remedy = RemedyFor(adapter, interface),
                      .meansNoAdapter = adapter.problem == AdapterProblem::kPeerToPeer &&
                                        HowToAllowPeerToPeer(adapter, interface).empty()});
  if (adapter.problem == AdapterProblem::kNothing) {
    const Supplicant supplicant(adapter.socketPath, [](const Message&) {});
    std::ranges::move(ExamineSupplicant(supplicant, interface, ConfigurationOf(interface)),
                      std::back_inserter(findings));
  }
}

// ---- What else runs on the machine

void ExamineNetwork(Findings& findings, const std::string& interface) {
  const std::string other = OtherUserOfNetwork(kOwnerAddress, interface);
  findings.push_back({.isFine = other.empty() || other.starts_with(kGroupPrefix),
                      .what = "the network of " + std::string(kOwnerAddress) + ", for links",
                      .remedy = "give " + other + " another network"});
}

void ExamineRivals(Findings& findings, const std::string& interface) {
  if (HasCapability(CAP_NET_BIND_SERVICE)) {  // without it this cannot be told
    findings.push_back(
        {.isFine = IsServerPortFree(),
         .what = "port 67, for a DHCP server",
         .remedy = "sudo ss -lunp 'sport = :67', and stop the program that it names"});
  }
  if (IsRunning("iwd")) {
    findings.push_back({.isFine = false,
                        .what = "iwd runs, which takes the adapter for itself",
                        .remedy = "sudo systemctl disable --now iwd"});
  }
  if (IsRunning("NetworkManager")) {
    findings.push_back(
        {.isFine = AnySets({"/etc/NetworkManager/NetworkManager.conf", "/etc/NetworkManager/conf.d",
                            "/run/NetworkManager/conf.d", "/usr/lib/NetworkManager/conf.d"},
                           "unmanaged-devices", "interface-name:p2p"),
         .what = "NetworkManager leaves the interfaces of groups alone",
         .remedy = "write [keyfile] and unmanaged-devices=interface-name:p2p*;interface-name:" +
                   interface +
                   " into /etc/NetworkManager/conf.d/lanvoss.conf, and sudo systemctl "
                   "reload NetworkManager"});
  }
  if (IsRunning("dhcpcd")) {
    findings.push_back({.isFine = AnySets({"/etc/dhcpcd.conf"}, "denyinterfaces", "p2p"),
                        .what = "dhcpcd leaves the interfaces of groups alone",
                        .remedy = "write denyinterfaces p2p* into /etc/dhcpcd.conf, and sudo "
                                  "systemctl restart dhcpcd"});
  }
}

}  // namespace

std::vector<platform::Finding> Examine(const std::string& interface) {
  Findings findings;
  ExamineRights(findings);
  ExamineProgram(findings, "wpa_supplicant", "wpasupplicant", "the radio's software");
  ExamineProgram(findings, "dnsmasq", "dnsmasq-base", "for devices that ask for addresses by DHCP");
  ExamineProgram(findings, "udhcpc", "udhcpc", "for devices that give addresses by DHCP");
  const Adapter adapter = LookForAdapter(interface);
  const std::string used = InterfaceToUse(interface, adapter);
  ExamineAdapter(findings, adapter, used);
  ExamineNetwork(findings, used);
  ExamineRivals(findings, used);
  return findings;
}

}  // namespace lanvoss::wpa
