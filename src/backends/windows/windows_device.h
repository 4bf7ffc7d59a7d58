// An opened link and its addresses.
#pragma once

#include <memory>

#include "backends/windows/com_pointer.h"
#include "backends/windows/winrt_abi.h"
#include "platform/wifi_direct.h"

namespace lanvoss::windows {

// A link to one device. The platform calls it a WiFiDirectDevice, so it keeps that name.
class WindowsDevice final : public platform::WiFiDirectDevice {
 public:
  explicit WindowsDevice(ComPointer<abi::IWiFiDirectDevice> device);

  platform::WiFiDirectConnectionStatus ConnectionStatus() override;
  platform::EventToken ConnectionStatusChanged(
      platform::PlainHandler<platform::WiFiDirectDevice> handler) override;
  std::shared_ptr<platform::EndpointPairView> GetConnectionEndpointPairs() override;
  void Close() override;

 private:
  const ComPointer<abi::IWiFiDirectDevice> device_;
};

}  // namespace lanvoss::windows
