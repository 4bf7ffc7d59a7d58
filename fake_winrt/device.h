// An opened link and its addresses.
#pragma once

#include <memory>

#include "backends/windows/winrt_abi.h"
#include "object.h"
#include "platform/wifi_direct.h"

namespace lanvoss::fake_winrt {

class Device final
    : public Facade<platform::WiFiDirectDevice, abi::IWiFiDirectDevice, abi::IClosable> {
 public:
  using StatusDelegate = abi::TypedEventHandler<abi::IWiFiDirectDevice*, IInspectable*>;

  Device(Session& session, std::shared_ptr<platform::WiFiDirectDevice> device);

  STDMETHOD(get_ConnectionStatus)(abi::WiFiDirectConnectionStatus* value) noexcept override;
  STDMETHOD(add_ConnectionStatusChanged)
  (StatusDelegate* handler, EventRegistrationToken* token) noexcept override;
  STDMETHOD(GetConnectionEndpointPairs)
  (abi::IVectorView<abi::IEndpointPair*>** value) noexcept override;
  STDMETHOD(Close)() noexcept override;

  STDMETHOD(get_DeviceId)(HSTRING*) noexcept override { return NotUsed(__func__); }
  STDMETHOD(remove_ConnectionStatusChanged)(EventRegistrationToken) noexcept override {
    return NotUsed(__func__);
  }
};

}  // namespace lanvoss::fake_winrt
