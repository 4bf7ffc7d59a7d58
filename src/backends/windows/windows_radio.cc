#include "backends/windows/windows_radio.h"

#include <utility>

#include "backends/windows/activation.h"
#include "backends/windows/async.h"
#include "backends/windows/property_names.h"
#include "backends/windows/windows_device.h"
#include "backends/windows/windows_information.h"
#include "backends/windows/windows_watcher.h"
#include "backends/windows/winrt_string.h"

namespace lanvoss::windows {
namespace {

constexpr std::u16string_view kDeviceInformationClass =
    u"Windows.Devices.Enumeration.DeviceInformation";
constexpr std::u16string_view kDeviceClass = u"Windows.Devices.WiFiDirect.WiFiDirectDevice";
constexpr std::u16string_view kParametersClass =
    u"Windows.Devices.WiFiDirect.WiFiDirectConnectionParameters";

class WindowsRadio final : public platform::WiFiDirect {
 public:
  explicit WindowsRadio(std::shared_ptr<platform::System> system) : system_(std::move(system)) {}

  std::u16string GetDeviceSelector(platform::WiFiDirectDeviceSelectorType type) override {
    const auto statics = StaticsOf<abi::IWiFiDirectDeviceStatics2>(kDeviceClass);
    return WinrtString::Adopt(
               Read<HSTRING>(statics, &abi::IWiFiDirectDeviceStatics2::GetDeviceSelector, type))
        .Text();
  }

  std::shared_ptr<platform::DeviceWatcher> CreateWatcher(
      const std::u16string& selector,
      const std::vector<std::u16string>& additionalProperties) override {
    const auto statics = StaticsOf<abi::IDeviceInformationStatics>(kDeviceInformationClass);
    const WinrtString filter(selector);
    const auto properties = PropertyNames(additionalProperties);
    auto watcher = Get<abi::IDeviceWatcher>(
        statics, &abi::IDeviceInformationStatics::CreateWatcherAqsFilterAndAdditionalProperties,
        filter.Get(), properties.Get());
    return watcher ? std::make_shared<WindowsWatcher>(std::move(watcher), system_) : nullptr;
  }

  std::shared_ptr<platform::WiFiDirectConnectionParameters> CreateConnectionParameters() override {
    return std::make_shared<WindowsConnectionParameters>(Activate(kParametersClass));
  }

  std::shared_ptr<platform::WiFiDirectDevice> FromIdAsync(const std::u16string& deviceId) override {
    const auto statics = StaticsOf<abi::IWiFiDirectDeviceStatics>(kDeviceClass);
    const WinrtString id(deviceId);
    const auto operation = Get<abi::IAsyncOperation<abi::IWiFiDirectDevice*>>(
        statics, &abi::IWiFiDirectDeviceStatics::FromIdAsync, id.Get());
    auto device = Await(system_, operation);
    return device ? std::make_shared<WindowsDevice>(std::move(device)) : nullptr;
  }

 private:
  const std::shared_ptr<platform::System> system_;
};

}  // namespace

std::shared_ptr<platform::WiFiDirect> CreateRadio(std::shared_ptr<platform::System> system) {
  return std::make_shared<WindowsRadio>(std::move(system));
}

}  // namespace lanvoss::windows
