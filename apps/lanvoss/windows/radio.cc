#include "radio.h"

#include "backends/simulated/demo.h"
#include "backends/windows/windows_radio.h"
#include "backends/windows/windows_system.h"
#include "platform/error.h"

namespace lanvoss::program {
namespace {

constexpr char kSimulated[] = "simulated";
constexpr char kWindows[] = "windows";

platform::Finding ExamineRadio() {
  const auto radio = windows::CreateRadio(windows::CreateSystem());
  try {
    const auto selector =
        radio->GetDeviceSelector(platform::WiFiDirectDeviceSelectorType::AssociationEndpoint);
    if (radio->CreateWatcher(selector, {platform::kInformationElements}) != nullptr) {
      return {.what = "the system has Wi-Fi Direct"};
    }
    return {false, "the system has no watcher for Wi-Fi Direct", "a Windows 10 or later"};
  } catch (const platform::Error& error) {
    return {false, std::string("no Wi-Fi Direct: ") + error.what(), "a Windows 10 or later"};
  }
}

}  // namespace

std::string RadioNames() { return "windows (default) or simulated"; }

bool IsRadioName(const std::string& name) { return name == kSimulated || name == kWindows; }

platform::Platform CreatePlatform(const std::optional<std::string>& radioName,
                                  const std::optional<simulated::Scenario>& scenario) {
  const auto system = windows::CreateSystem();
  if (scenario || radioName == kSimulated) {
    return simulated::CreatePlatform(system, scenario.value_or(simulated::DemoScenario()));
  }
  return {system, windows::CreateRadio(system)};
}

std::vector<platform::Finding> Examine(const std::optional<std::string>& /*radioName*/) {
  const bool hasRight = windows::CreateSystem()->OpenIcmpSocket() != nullptr;
  return {
      ExamineRadio(),
      {hasRight, hasRight ? "the right to send echo requests" : "no right to send echo requests",
       HowToAllowRawSockets()}};
}

std::string HowToAllowRawSockets() { return "run the program as administrator"; }

}  // namespace lanvoss::program
