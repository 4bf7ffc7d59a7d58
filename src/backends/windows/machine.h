// The facts about a Windows machine that decide whether it can reach devices. What follows from
// them is in doctor.h, which needs no Windows.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/system.h"

namespace lanvoss::windows {

enum class ServiceState { kUnknown, kAbsent, kStopped, kRunning };

enum class RadioState { kUnknown, kOn, kOffInSettings, kOffBySwitch };

struct WiFiAdapter {
  std::string name = {};
  std::string driverVersion = {};
  std::string driverDate = {};  // 2021-11-23
  // Why the device does not work, with the number that the device manager shows; 0: it works.
  std::uint32_t problem = 0;
  RadioState radio = RadioState::kUnknown;
};

inline constexpr std::uint32_t kProblemDisabled = 22;

struct WiFiAdapters {
  std::vector<WiFiAdapter> real = {};
  // Those that Windows makes on a real one that supports Wi-Fi Direct.
  std::vector<WiFiAdapter> forWiFiDirect = {};
  // The same, of adapters and drivers that are no longer there.
  int leftForWiFiDirect = 0;
};

// Protocols as the firewall's rules name them.
inline constexpr std::int32_t kIcmpV4 = 1;
inline constexpr std::int32_t kAnyProtocol = 256;

// An enabled rule for what comes in from public networks. The firewall takes a new link for one.
struct FirewallRule {
  std::string name = {};
  bool blocks = false;  // or lets in
  bool isForThisProgram = true;
  std::int32_t protocol = kAnyProtocol;
  std::string icmpTypes = {};        // "0:*,8:*"; empty or "*": all
  std::string remoteAddresses = {};  // empty or "*": all
};

struct Firewall {
  bool isOn = true;
  std::vector<FirewallRule> rules = {};
};

// Texts are in the system's code page.
struct Machine {
  // Why the classes of Wi-Fi Direct cannot be used; empty: they can.
  std::string problemOfClasses = {};
  ServiceState wlanService = ServiceState::kUnknown;
  // The error of WFDOpenHandle, 0 if it succeeded; none: Windows has no such function.
  std::optional<std::uint32_t> wiFiDirectError = {};
  WiFiAdapters adapters = {};
  ServiceState hotspotService = ServiceState::kUnknown;
  bool hasHostedNetwork = false;
  bool hasRawSockets = false;
  std::optional<Firewall> firewall = {};  // none: it cannot be read
};

Machine ReadMachine(const std::shared_ptr<platform::System>& system);

}  // namespace lanvoss::windows
