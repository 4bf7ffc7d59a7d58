#include "backends/wpa/adapter.h"

#include <algorithm>
#include <filesystem>
#include <net/if.h>
#include <set>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "backends/wpa/control_socket.h"
#include "backends/wpa/message.h"
#include "platform/error.h"

namespace lanvoss::wpa {
namespace {

namespace fs = std::filesystem;

// The names of all control sockets, those for peer-to-peer alone first.
std::vector<std::string> SocketNames() {
  std::set<std::string> devices;
  std::set<std::string> others;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(kControlDirectory, none)) {
    const std::string name = entry.path().filename();
    (name.starts_with(kDevicePrefix) ? devices : others).insert(name);
  }
  std::vector<std::string> names(devices.begin(), devices.end());
  names.insert(names.end(), others.begin(), others.end());
  return names;
}

// Whoever may use the directory may use the sockets in it.
bool MayLook() {
  return access(kControlDirectory, F_OK) != 0 || access(kControlDirectory, R_OK | X_OK) == 0;
}

// One wpa_supplicant uses one adapter for Wi-Fi Direct, the first, and sends the events to that
// one's socket alone, but takes commands at the sockets of all.
bool UsesAnother(const std::string& interfaces, const std::string& socketName) {
  const std::vector<std::string> all = Lines(interfaces);
  return !socketName.starts_with(kDevicePrefix) &&
         std::any_of(all.begin(), all.end(), [&](const std::string& interface) {
           return interface.starts_with(kDevicePrefix) && interface != DeviceInterface(socketName);
         });
}

AdapterProblem ProblemOf(const std::string& socketPath) {
  std::string status;
  std::string interfaces;
  try {
    status = Ask(socketPath, "STATUS");
    interfaces = Ask(socketPath, "INTERFACES");
  } catch (const platform::Error&) {
    return access(socketPath.c_str(), W_OK) == 0 ? AdapterProblem::kControl
                                                 : AdapterProblem::kRight;
  }
  if (LineOf(status, "p2p_device_address").empty()) {
    return AdapterProblem::kPeerToPeer;
  }
  if (UsesAnother(interfaces, fs::path(socketPath).filename())) {
    return AdapterProblem::kOtherAdapter;
  }
  return LineOf(status, "wpa_state") == "INTERFACE_DISABLED" ? AdapterProblem::kSwitchedOn
                                                             : AdapterProblem::kNothing;
}

}  // namespace

std::string DeviceInterface(const std::string& interface) {
  return (kDevicePrefix + interface).substr(0, IFNAMSIZ - 1);
}

bool IsSocketOf(const std::string& socketName, const std::string& interface) {
  return socketName == interface || socketName == DeviceInterface(interface);
}

Adapter LookForAdapter(const std::string& interface) {
  if (!MayLook()) {
    return {.problem = AdapterProblem::kRight};
  }
  const std::vector<std::string> names = SocketNames();
  Adapter best{.problem = names.empty() ? AdapterProblem::kControl : AdapterProblem::kInterface,
               .name = interface};
  for (const std::string& name : names) {
    if (!interface.empty() && !IsSocketOf(name, interface)) {
      continue;
    }
    const std::string path = fs::path(kControlDirectory) / name;
    best = {.problem = ProblemOf(path), .name = name, .socketPath = path};
    if (best.problem == AdapterProblem::kNothing) {
      break;
    }
  }
  return best;
}

std::string Explain(const Adapter& adapter) {
  const std::string directory = kControlDirectory;
  switch (adapter.problem) {
    case AdapterProblem::kNothing:
      return adapter.name + " is ready for Wi-Fi Direct";
    case AdapterProblem::kControl:
      return "no wpa_supplicant answers in " + directory;
    case AdapterProblem::kRight:
      return "this user may not speak to the wpa_supplicant in " + directory;
    case AdapterProblem::kInterface:
      return "the wpa_supplicant in " + directory + " has no interface " + adapter.name;
    case AdapterProblem::kPeerToPeer:
      return adapter.name + " has no Wi-Fi Direct, or it is disabled";
    case AdapterProblem::kOtherAdapter:
      return "wpa_supplicant uses another adapter than " + adapter.name + " for Wi-Fi Direct";
    case AdapterProblem::kSwitchedOn:
      return "the radio of " + adapter.name + " is switched off";
  }
  return {};
}

}  // namespace lanvoss::wpa
