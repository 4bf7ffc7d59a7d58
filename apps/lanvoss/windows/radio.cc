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

platform::Platform CreatePlatform(const std::optional<std::string>& radioName,
                                  const std::optional<simulated::Scenario>& scenario) {
  const auto system = windows::CreateSystem();
  if (scenario || radioName == kSimulatedRadio) {
    return simulated::CreatePlatform(system, scenario.value_or(simulated::DemoScenario()));
  }
  return {system, windows::CreateRadio(system)};
}

std::vector<platform::Finding> Examine(const std::optional<std::string>& /*radioName*/) {
  return windows::Examine(windows::ReadMachine(windows::CreateSystem()));
}

std::string HowToAllowRawSockets() { return windows::kHowToAllowRawSockets; }

}  // namespace lanvoss::program
