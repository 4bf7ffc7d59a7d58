#include "backends/windows/machine.h"

#include <type_traits>
#include <windows.h>
// Behind windows.h.
#include <winsvc.h>

#include "backends/windows/firewall.h"
#include "backends/windows/network_devices.h"
#include "backends/windows/windows_radio.h"
#include "backends/windows/wlan.h"
#include "platform/error.h"
#include "platform/wifi_direct.h"

namespace lanvoss::windows {
namespace {

struct CloseService {
  void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using ServiceHandle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, CloseService>;

ServiceState StateOfService(const wchar_t* name) {
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
  if (!manager) {
    return ServiceState::kUnknown;
  }
  const ServiceHandle service(OpenServiceW(manager.get(), name, SERVICE_QUERY_STATUS));
  if (!service) {
    return GetLastError() == ERROR_SERVICE_DOES_NOT_EXIST ? ServiceState::kAbsent
                                                          : ServiceState::kUnknown;
  }
  SERVICE_STATUS status{};
  if (QueryServiceStatus(service.get(), &status) == FALSE) {
    return ServiceState::kUnknown;
  }
  return status.dwCurrentState == SERVICE_RUNNING ? ServiceState::kRunning : ServiceState::kStopped;
}

// The selector and the watcher work on every Windows 10, also on one without any adapter.
std::string ProblemOfClasses(const std::shared_ptr<platform::System>& system) {
  const auto radio = CreateRadio(system);
  try {
    const auto selector =
        radio->GetDeviceSelector(platform::WiFiDirectDeviceSelectorType::AssociationEndpoint);
    const auto watcher = radio->CreateWatcher(selector, {platform::kInformationElements});
    return watcher != nullptr ? "" : "there is no watcher";
  } catch (const platform::Error& error) {
    return system->WideToAnsi(error.Message());
  }
}

}  // namespace

Machine ReadMachine(const std::shared_ptr<platform::System>& system) {
  const WlanState wlan = ReadWlanState();
  return {.problemOfClasses = ProblemOfClasses(system),
          .wlanService = StateOfService(L"WlanSvc"),
          .wiFiDirectError = wlan.wiFiDirectError,
          .adapters = ReadWiFiAdapters(*system, wlan),
          .hotspotService = StateOfService(L"icssvc"),
          .hasHostedNetwork = wlan.hasHostedNetwork,
          .hasRawSockets = system->OpenIcmpSocket() != nullptr,
          .firewall = ReadFirewall(*system)};
}

}  // namespace lanvoss::windows
