// Which adapter is there for Wi-Fi Direct, and where wpa_supplicant takes commands for it.
#pragma once

#include <string>

namespace lanvoss::wpa {

// Where Debian's wpa_supplicant has its control sockets.
inline constexpr char kControlDirectory[] = "/run/wpa_supplicant";

// Some drivers have a separate interface for peer-to-peer, which wpa_supplicant names after the
// adapter's: the prefix and the name, cut to the length of an interface's name.
inline constexpr char kDevicePrefix[] = "p2p-dev-";
std::string DeviceInterface(const std::string& interface);

// Whether the adapter with this interface takes its commands at the control socket of this name.
bool IsSocketOf(const std::string& socketName, const std::string& interface);

// What can be in the way of using an adapter.
enum class AdapterProblem {
  kNothing,
  kControl,       // there is no control socket in the directory
  kRight,         // this user may not speak to it
  kInterface,     // wpa_supplicant manages no interface of that name
  kPeerToPeer,    // the adapter has no Wi-Fi Direct
  kOtherAdapter,  // wpa_supplicant manages several, and uses another one for Wi-Fi Direct
  kSwitchedOn,    // the radio is switched off
};

struct Adapter {
  AdapterProblem problem = AdapterProblem::kNothing;
  std::string name = {};  // of the interface, where it got that far
  std::string socketPath = {};
};

// The adapter with this network interface; for an empty text, the first one that supports Wi-Fi
// Direct.
Adapter LookForAdapter(const std::string& interface);

// One sentence for people.
std::string Explain(const Adapter& adapter);

}  // namespace lanvoss::wpa
