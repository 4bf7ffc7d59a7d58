#include "commands/doctor.h"

#include "backends/windows/windows_radio.h"
#include "backends/windows/windows_system.h"
#include "platform/error.h"
#include "raw_sockets.h"

namespace lanvoss::program {
namespace {

Finding ExamineRadio() {
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

std::vector<Finding> Examine(const std::string& /*radioName*/) {
  const bool hasRight = windows::CreateSystem()->OpenIcmpSocket() != nullptr;
  return {
      ExamineRadio(),
      {hasRight, hasRight ? "the right to send echo requests" : "no right to send echo requests",
       HowToAllowRawSockets()}};
}

}  // namespace lanvoss::program
