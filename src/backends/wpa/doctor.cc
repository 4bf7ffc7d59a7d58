#include "backends/wpa/doctor.h"

#include <filesystem>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "backends/wpa/adapter.h"
#include "backends/wpa/child_process.h"
#include "backends/wpa/control_socket.h"
#include "backends/wpa/message.h"
#include "platform/error.h"

namespace lanvoss::wpa {
namespace {

using platform::Finding;

bool HasCapability(unsigned capability) {
  __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3] = {};
  return syscall(SYS_capget, &header, data) == 0 &&
         (data[CAP_TO_INDEX(capability)].effective & CAP_TO_MASK(capability)) != 0;
}

Finding ExamineRights() {
  if (HasCapability(CAP_NET_RAW) && HasCapability(CAP_NET_ADMIN)) {
    return {.what = "the right to send echo requests and to set addresses"};
  }
  std::error_code unknown;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown).string();
  return {.isFine = false,
          .what = "no right to send echo requests, or none to set addresses",
          .remedy = "sudo setcap cap_net_raw,cap_net_admin+ep " + program};
}

Finding ExamineProgram(const std::string& program, const std::string& package,
                       const std::string& purpose) {
  return {.isFine = IsInstalled(program),
          .what = program + ", " + purpose,
          .remedy = "sudo apt-get install " + package};
}

std::string RemedyFor(const Adapter& adapter) {
  switch (adapter.problem) {
    case AdapterProblem::kNothing:
      return {};
    case AdapterProblem::kControl:
    case AdapterProblem::kInterface:
      return "sudo wpa_supplicant -B -D nl80211 -i " +
             (adapter.name.empty() ? "wlan0" : adapter.name) +
             " -c /etc/wpa_supplicant/wpa_supplicant.conf";
    case AdapterProblem::kRight:
      return "sudo usermod --append --groups netdev \"$USER\", and log in again";
    case AdapterProblem::kPeerToPeer:
      return "iw list | grep P2P, which tells whether another adapter can";
    case AdapterProblem::kSwitchedOn:
      return "sudo rfkill unblock wifi";
  }
  return {};
}

// A group takes the adapter's time, and on most adapters the only place there is for one.
Finding ExamineGroups(const Adapter& adapter) {
  for (const std::string& name : Lines(Ask(adapter.socketPath, "INTERFACES"))) {
    if (name.starts_with("p2p-") && !name.starts_with("p2p-dev-")) {
      return {.isFine = false,
              .what = "the adapter is busy with the group " + name,
              .remedy = "sudo wpa_cli -i " + adapter.name + " p2p_group_remove " + name};
    }
  }
  return {.what = "the adapter is free"};
}

Finding ExamineMemory(const Adapter& adapter) {
  return {.isFine = Ask(adapter.socketPath, "GET update_config").starts_with('1'),
          .what = "wpa_supplicant keeps pairings when it ends",
          .remedy = "put the line update_config=1 into its configuration"};
}

}  // namespace

std::vector<platform::Finding> Examine(const std::string& interface) {
  std::vector<Finding> findings = {
      ExamineRights(), ExamineProgram("wpa_supplicant", "wpasupplicant", "the radio's software"),
      ExamineProgram("dnsmasq", "dnsmasq-base", "for devices that ask for addresses by DHCP"),
      ExamineProgram("udhcpc", "udhcpc", "for devices that give addresses by DHCP")};
  const Adapter adapter = LookForAdapter(interface);
  findings.push_back({.isFine = adapter.problem == AdapterProblem::kNothing,
                      .what = Explain(adapter),
                      .remedy = RemedyFor(adapter)});
  if (adapter.problem == AdapterProblem::kNothing) {
    findings.push_back(ExamineGroups(adapter));
    findings.push_back(ExamineMemory(adapter));
  }
  return findings;
}

}  // namespace lanvoss::wpa
