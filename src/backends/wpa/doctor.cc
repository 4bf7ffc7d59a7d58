#include "backends/wpa/doctor.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <grp.h>
#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "backends/wpa/adapter.h"
#include "backends/wpa/child_process.h"
#include "backends/wpa/credentials.h"
#include "backends/wpa/groups.h"
#include "backends/wpa/machine.h"
#include "backends/wpa/supplicant.h"

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

// The network interface that this is about: the one that was asked for, or the machine's first.
std::string InterfaceToUse(const std::string& interface) {
  const std::vector<std::string> all = WirelessInterfaces();
  return !interface.empty() ? interface : all.empty() ? "wlan0" : all.front();
}

// Of an interface whose commands are taken at the adapter's socket.
std::string InterfaceOf(const Adapter& adapter) {
  for (const std::string& interface : WirelessInterfaces()) {
    if (IsSocketOf(adapter.name, interface)) {
      return interface;
    }
  }
  return adapter.name;
}

std::string GroupOfControlDirectory() {
  struct stat status {};
  group entry{};
  group* found = nullptr;
  std::array<char, 1024> texts;
  if (stat(kControlDirectory, &status) == 0) {
    getgrgid_r(status.st_gid, &entry, texts.data(), texts.size(), &found);
  }
  return found == nullptr ? "netdev" : found->gr_name;
}

std::string RemedyFor(const Adapter& adapter, const std::string& interface) {
  switch (adapter.problem) {
    case AdapterProblem::kNothing:
      return {};
    case AdapterProblem::kControl:
    case AdapterProblem::kInterface:
      return "sudo systemctl enable --now wpa_supplicant-nl80211@" + interface +
             ", with a configuration in /etc/wpa_supplicant/wpa_supplicant-nl80211-" + interface +
             ".conf";
    case AdapterProblem::kRight:
      return "sudo usermod --append --groups " + GroupOfControlDirectory() +
             " \"$USER\", and log in again";
    case AdapterProblem::kPeerToPeer:
      return "iw list | grep P2P, which tells whether the adapter can; before version 2.10 "
             "wpa_supplicant cannot use an interface whose name has more than 7 letters";
    case AdapterProblem::kSwitchedOn:
      return "sudo rfkill unblock wifi";
  }
  return {};
}

Finding SameNames(const std::string& interface, const std::string& other) {
  return {
      .isFine = false,
      .what = interface + " and " + other + " begin alike, so that both are " +
              DeviceInterface(interface) + " for wpa_supplicant",
      .remedy = "sudo ip link set " + other + " down; sudo ip link set " + other + " name wlan1"};
}

// wpa_supplicant cuts the name of the interface for peer-to-peer, so two can be the same.
void ExamineNames(Findings& findings, const std::string& interface) {
  for (const std::string& other : WirelessInterfaces()) {
    if (other != interface && DeviceInterface(other) == DeviceInterface(interface)) {
      findings.push_back(SameNames(interface, other));
    }
  }
}

// A group takes the adapter's time, and on most adapters the only place that there is for one.
void ExamineGroups(Findings& findings, const Supplicant& supplicant) {
  const std::vector<Group> groups = GroupsOf(supplicant);
  if (groups.empty()) {
    findings.push_back({.what = "the adapter is free"});
  }
  for (const Group& group : groups) {
    findings.push_back({.isFine = false,
                        .what = "the adapter is busy with the group " + group.interface,
                        .remedy = "sudo wpa_cli -i " + supplicant.SocketName() +
                                  " p2p_group_remove " + group.interface});
  }
}

// The wpa_supplicant that NetworkManager uses has no file to keep pairings in.
void ExamineMemory(Findings& findings, const Supplicant& supplicant, const std::string& interface) {
  const std::string file = ConfigurationOf(interface);
  findings.push_back(
      {.isFine = supplicant.Ask("GET update_config").starts_with('1'),
       .what = "wpa_supplicant keeps pairings when it ends",
       .remedy = file.empty() ? "sudo nmcli device set " + interface +
                                    " managed no, and start a wpa_supplicant with a configuration "
                                    "for it: sudo systemctl enable --now wpa_supplicant-nl80211@" +
                                    interface
                              : "put the line update_config=1 into " + file});
}

// The stored groups of this machine carry its own address, which some drivers change at each start.
void ExamineStoredGroups(Findings& findings, const Supplicant& supplicant) {
  constexpr char kOwnerMode[] = "3";
  const std::string own = LineOf(supplicant.Ask("STATUS"), "p2p_device_address");
  for (const StoredGroup& group : StoredGroups(supplicant)) {
    const std::string mode = supplicant.Ask("GET_NETWORK " + group.id + " mode");
    if (mode == kOwnerMode && group.owner != own) {
      findings.push_back({.isFine = false,
                          .what = "the pairing " + group.id + " (" + group.ssid +
                                  ") was made with another address of this adapter",
                          .remedy = "sudo wpa_cli -i " + supplicant.SocketName() +
                                    " remove_network " + group.id + ", and pair again"});
    }
  }
}

// Whether a group may be formed there, by the rules of the country.
bool IsAllowed(const std::string& channels, const std::string& frequency) {
  const std::vector<std::string> lines = Lines(channels);
  return std::ranges::any_of(lines, [&](const std::string& line) {
    return line.find(" = " + frequency + " MHz") != std::string::npos &&
           line.find('(') == std::string::npos;  // what is forbidden there
  });
}

// A group is formed where devices listen, or on the channel of the network that the adapter is in.
void ExamineChannels(Findings& findings, const Supplicant& supplicant,
                     const std::string& interface) {
  const std::string channels = supplicant.Ask("GET_CAPABILITY freq");
  const std::string status = supplicant.AskAbout(interface, "STATUS");
  std::vector<std::string> wanted = {"2412", "2437", "2462"};
  if (const auto frequency = LineOf(status, "freq"); !frequency.empty()) {
    wanted = {frequency};
  }
  findings.push_back(
      {.isFine = std::ranges::any_of(
           wanted, [&](const std::string& frequency) { return IsAllowed(channels, frequency); }),
       .what = "a channel on which a group may be formed, " + wanted.front() + " MHz",
       .remedy = "set the country, for example country=DE in the configuration, " +
                 ConfigurationOf(interface) + "; or move the access point of " + interface +
                 " to another channel"});
}

// ---- What else runs on the machine

void ExamineRivals(Findings& findings, const std::string& interface) {
  findings.push_back({.isFine = IsServerPortFree(),
                      .what = "port 67, for a DHCP server",
                      .remedy = "sudo ss -lunp 'sport = :67', and stop the program that it names"});
  if (IsRunning("iwd")) {
    findings.push_back({.isFine = false,
                        .what = "iwd runs, which takes the adapter for itself",
                        .remedy = "sudo systemctl disable --now iwd"});
  }
  const std::string leavesAlone = "NetworkManager leaves the interfaces of groups alone";
  if (IsRunning("NetworkManager")) {
    findings.push_back(
        {.isFine = AnyContains({"/etc/NetworkManager/NetworkManager.conf",
                                "/etc/NetworkManager/conf.d", "/usr/lib/NetworkManager/conf.d"},
                               "interface-name:p2p"),
         .what = leavesAlone,
         .remedy = "write [keyfile] and unmanaged-devices=interface-name:p2p*;interface-name:" +
                   interface + " into /etc/NetworkManager/conf.d/lanvoss.conf"});
  }
  if (IsRunning("dhcpcd")) {
    findings.push_back({.isFine = AnyContains({"/etc/dhcpcd.conf"}, "denyinterfaces p2p"),
                        .what = "dhcpcd leaves the interfaces of groups alone",
                        .remedy = "write denyinterfaces p2p* into /etc/dhcpcd.conf"});
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
  const std::string used = adapter.problem == AdapterProblem::kNothing ? InterfaceOf(adapter)
                                                                       : InterfaceToUse(interface);
  findings.push_back({.isFine = adapter.problem == AdapterProblem::kNothing,
                      .what = Explain(adapter),
                      .remedy = RemedyFor(adapter, used)});
  ExamineNames(findings, used);
  if (adapter.problem == AdapterProblem::kNothing) {
    const Supplicant supplicant(adapter.socketPath, [](const Message&) {});
    ExamineGroups(findings, supplicant);
    ExamineMemory(findings, supplicant, used);
    ExamineStoredGroups(findings, supplicant);
    ExamineChannels(findings, supplicant, used);
  }
  ExamineRivals(findings, used);
  return findings;
}

}  // namespace lanvoss::wpa
