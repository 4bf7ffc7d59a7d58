#include "radio.h"

#include "backends/posix/posix_system.h"
#include "backends/simulated/demo.h"
#include "backends/wpa/wpa_radio.h"
#include "wpa_adapter.h"

namespace lanvoss::program {
namespace {

constexpr char kSimulated[] = "simulated";
constexpr char kWpa[] = "wpa";
constexpr char kWpaWithInterface[] = "wpa:";

}  // namespace

std::string RadioNames() { return "simulated (default), wpa or wpa:INTERFACE"; }

bool IsRadioName(const std::string& name) {
  return name == kSimulated || WpaInterfaceOf(name).has_value();
}

std::optional<std::string> WpaInterfaceOf(const std::string& radioName) {
  if (radioName == kWpa) {
    return "";
  }
  if (radioName.starts_with(kWpaWithInterface) && radioName != kWpaWithInterface) {
    return radioName.substr(radioName.find(':') + 1);
  }
  return std::nullopt;
}

platform::Platform CreatePlatform(const std::optional<std::string>& radioName,
                                  const std::optional<simulated::Scenario>& scenario) {
  const auto system = posix::CreateSystem();
  if (const auto interface = WpaInterfaceOf(radioName.value_or(kSimulated))) {
    return {system, wpa::CreateRadio(system, *interface)};
  }
  return simulated::CreatePlatform(system, scenario.value_or(simulated::DemoScenario()));
}

}  // namespace lanvoss::program
