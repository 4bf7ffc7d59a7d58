#include "radio.h"

#include "backends/posix/posix_system.h"
#include "backends/simulated/demo.h"
#include "backends/wpa/doctor.h"
#include "backends/wpa/wpa_radio.h"
#include "system.h"

namespace lanvoss::program {
namespace {

constexpr char kWpa[] = "wpa";
constexpr char kWpaWithInterface[] = "wpa:";

// The network interface in the name of a real radio, empty when the name has none. None for any
// other radio.
std::optional<std::string> WpaInterfaceOf(const std::string& radioName) {
  if (radioName == kWpa) {
    return "";
  }
  if (radioName.starts_with(kWpaWithInterface) && radioName != kWpaWithInterface) {
    return radioName.substr(radioName.find(':') + 1);
  }
  return std::nullopt;
}

}  // namespace

std::string RadioNames() { return "simulated (default), wpa or wpa:INTERFACE"; }

bool IsRadioName(const std::string& name) {
  return name == kSimulatedRadio || WpaInterfaceOf(name).has_value();
}

platform::Platform CreatePlatform(const std::optional<std::string>& radioName,
                                  const std::optional<simulated::Scenario>& scenario) {
  const auto system = posix::CreateSystem();
  if (const auto interface = WpaInterfaceOf(radioName.value_or(kSimulatedRadio))) {
    return {system, wpa::CreateRadio(system, *interface)};
  }
  return simulated::CreatePlatform(system, scenario.value_or(simulated::DemoScenario()));
}

std::vector<platform::Finding> Examine(const std::optional<std::string>& radioName) {
  return wpa::Examine(WpaInterfaceOf(radioName.value_or(kWpa)).value_or(""));
}

std::string HowToAllowRawSockets() {
  return "sudo setcap cap_net_raw+ep " + ProgramFile().string();
}

}  // namespace lanvoss::program
