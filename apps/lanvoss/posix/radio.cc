#include "radio.h"

#include "backends/posix/posix_system.h"
#include "backends/simulated/demo.h"
#include "backends/wpa/adapter.h"
#include "backends/wpa/doctor.h"
#include "backends/wpa/left_over.h"
#include "backends/wpa/wpa_radio.h"
#include "system.h"

namespace lanvoss::program {
namespace {

constexpr char kWpa[] = "wpa";
constexpr char kAuto[] = "auto";
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

std::string RadioNames() { return "auto (default), wpa, wpa:INTERFACE or simulated"; }

bool IsRadioName(const std::string& name) {
  return name == kAuto || name == kSimulatedRadio || WpaInterfaceOf(name).has_value();
}

Radio SimulatedRadio() { return {.name = kSimulatedRadio}; }

// The real radio if there is one that works.
Radio ChooseRadio(const std::optional<std::string>& radioName) {
  const std::string name = radioName.value_or(kAuto);
  if (const auto interface = WpaInterfaceOf(name)) {
    return {.name = kWpa, .interface = *interface};
  }
  Radio simulated = SimulatedRadio();
  if (name == kAuto) {
    const wpa::Adapter adapter = wpa::LookForAdapter("");
    if (adapter.problem == wpa::AdapterProblem::kNothing) {
      return {.name = kWpa};
    }
    simulated.remark = "the devices are simulated, because " + wpa::Explain(adapter);
  }
  return simulated;
}

platform::Platform CreatePlatform(const Radio& radio,
                                  const std::optional<simulated::Scenario>& scenario) {
  const auto system = posix::CreateSystem();
  if (radio.name == kWpa) {
    return {system, wpa::CreateRadio(system, radio.interface)};
  }
  return simulated::CreatePlatform(system, scenario.value_or(simulated::DemoScenario()));
}

bool CloseLeftOverLinks(const Radio& radio, const std::string& name) {
  return radio.name == kWpa && wpa::CloseLinksTo(name, radio.interface);
}

std::vector<platform::Finding> Examine(const std::optional<std::string>& radioName) {
  return wpa::Examine(WpaInterfaceOf(radioName.value_or(kWpa)).value_or(""));
}

std::string HowToAllowRawSockets() {
  return "sudo setcap cap_net_raw+ep " + ProgramFile().string();
}

}  // namespace lanvoss::program
