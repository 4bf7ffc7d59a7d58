#include "factories.h"

#include <utility>

#include "async_operation.h"
#include "backends/windows/winrt_abi.h"
#include "device.h"
#include "information.h"
#include "object.h"
#include "property_list.h"
#include "session.h"
#include "text.h"
#include "watcher.h"

namespace lanvoss::windows::abi {

template <>
inline constexpr GUID kIid<IActivationFactory> = Guid("00000035-0000-0000-c000-000000000046");

}  // namespace lanvoss::windows::abi

namespace lanvoss::fake_winrt {
namespace {

using abi::IDeviceWatcher;
using abi::IWiFiDirectDevice;
using DeviceOperation = abi::IAsyncOperation<IWiFiDirectDevice*>;
using Properties = abi::IIterable<HSTRING>;

constexpr std::u16string_view kInformationClass = u"Windows.Devices.Enumeration.DeviceInformation";
constexpr std::u16string_view kDeviceClass = u"Windows.Devices.WiFiDirect.WiFiDirectDevice";
constexpr std::u16string_view kParametersClass =
    u"Windows.Devices.WiFiDirect.WiFiDirectConnectionParameters";

class InformationFactory final
    : public Facade<platform::WiFiDirect, IActivationFactory, abi::IDeviceInformationStatics> {
 public:
  InformationFactory(Session& session, std::shared_ptr<platform::WiFiDirect> radio)
      : Facade(session, "DeviceInformation factory", std::move(radio)) {}

  STDMETHOD(CreateWatcherAqsFilterAndAdditionalProperties)
  (HSTRING filter, Properties* properties, IDeviceWatcher** watcher) noexcept override {
    return Give(__func__, watcher, [&](auto& radio) {
      const auto names = ReadProperties(session(), properties);
      return session()
          .template Wrap<Watcher>(radio.CreateWatcher(windows::WinrtString::TextOf(filter), names))
          .Detach();
    });
  }

  STDMETHOD(ActivateInstance)(IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(CreateFromIdAsync)(HSTRING, IInspectable**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(CreateFromIdAsyncAdditionalProperties)
  (HSTRING, Properties*, IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(FindAllAsync)(IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(FindAllAsyncDeviceClass)(INT32, IInspectable**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(FindAllAsyncAqsFilter)(HSTRING, IInspectable**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(FindAllAsyncAqsFilterAndAdditionalProperties)
  (HSTRING, Properties*, IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(CreateWatcher)(IDeviceWatcher**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(CreateWatcherDeviceClass)(INT32, IDeviceWatcher**) noexcept override {
    return NotUsed(__func__);
  }
  STDMETHOD(CreateWatcherAqsFilter)(HSTRING, IDeviceWatcher**) noexcept override {
    return NotUsed(__func__);
  }
};

class DeviceFactory final
    : public Facade<platform::WiFiDirect, IActivationFactory, abi::IWiFiDirectDeviceStatics,
                    abi::IWiFiDirectDeviceStatics2> {
 public:
  DeviceFactory(Session& session, std::shared_ptr<platform::WiFiDirect> radio)
      : Facade(session, "WiFiDirectDevice factory", std::move(radio)) {}

  STDMETHOD(GetDeviceSelector)
  (abi::WiFiDirectDeviceSelectorType type, HSTRING* result) noexcept override {
    return Give(__func__, result,
                [type](auto& radio) { return NewText(radio.GetDeviceSelector(type)); });
  }
  STDMETHOD(FromIdAsync)(HSTRING deviceId, DeviceOperation** operation) noexcept override {
    return Give(__func__, operation, [&](auto&) {
      const auto open = [&session = session(), radio = Target(),
                         id = windows::WinrtString::TextOf(deviceId)] {
        const auto device = radio->FromIdAsync(id);
        session.NoteOpened(device.get());
        return session.Wrap<Device>(device);
      };
      return StartOperation<IWiFiDirectDevice>(session(), "opening", open).Detach();
    });
  }

  STDMETHOD(ActivateInstance)(IInspectable**) noexcept override { return NotUsed(__func__); }
  STDMETHOD(GetDeviceSelector)(HSTRING*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(FromIdAsync)
  (HSTRING, abi::IWiFiDirectConnectionParameters*, DeviceOperation**) noexcept override {
    return NotUsed(__func__);
  }
};

class ParametersFactory final : public Facade<platform::WiFiDirect, IActivationFactory> {
 public:
  ParametersFactory(Session& session, std::shared_ptr<platform::WiFiDirect> radio)
      : Facade(session, "WiFiDirectConnectionParameters factory", std::move(radio)) {}

  STDMETHOD(ActivateInstance)(IInspectable** instance) noexcept override {
    return Give(__func__, instance, [this](auto& radio) {
      const auto parameters =
          session().template Wrap<ConnectionParameters>(radio.CreateConnectionParameters());
      return parameters.template As<IInspectable>().Detach();
    });
  }
};

template <typename Factory>
windows::ComPointer<IActivationFactory> NewFactory() {
  Session& session = CurrentSession();
  return windows::ComPointer<IActivationFactory>::Adopt(
      session.Make<Factory>(session.Radio()).Detach());
}

}  // namespace

windows::ComPointer<IActivationFactory> FactoryOf(std::u16string_view className) {
  if (className == kInformationClass) {
    return NewFactory<InformationFactory>();
  }
  if (className == kDeviceClass) {
    return NewFactory<DeviceFactory>();
  }
  if (className == kParametersClass) {
    return NewFactory<ParametersFactory>();
  }
  return {};
}

}  // namespace lanvoss::fake_winrt
