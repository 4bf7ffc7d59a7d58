#include "radio.h"

#include "backends/simulated/demo.h"
#include "backends/windows/doctor.h"
#include "backends/windows/machine.h"
#include "backends/windows/windows_radio.h"
#include "backends/windows/windows_system.h"

namespace lanvoss::program {
namespace {

constexpr char kWindows[] = "windows";

}  // namespace

std::string RadioNames() { return "windows (default) or simulated"; }

bool IsRadioName(const std::string& name) { return name == kSimulatedRadio || name == kWindows; }

Radio SimulatedRadio() { return {.name = kSimulatedRadio}; }

Radio ChooseRadio(const std::optional<std::string>& radioName) {
  return {.name = radioName.value_or(kWindows)};
}

platform::Platform CreatePlatform(const Radio& radio,
                                  const std::optional<simulated::Scenario>& scenario) {
  const auto system = windows::CreateSystem();
  if (radio.name == kSimulatedRadio) {
    return simulated::CreatePlatform(system, scenario.value_or(simulated::DemoScenario()));
  }
  return {system, windows::CreateRadio(system)};
}

// Windows itself ends the links of a process that has ended.
bool CloseLeftOverLinks(const Radio& /*radio*/, const std::string& /*name*/) { return false; }

std::vector<platform::Finding> Examine(const std::optional<std::string>& /*radioName*/) {
  return windows::Examine(windows::ReadMachine(windows::CreateSystem()));
}

std::string HowToAllowRawSockets() { return windows::kHowToAllowRawSockets; }

}  // namespace lanvoss::program
