#include "backends/windows/windows_device.h"

#include <utility>

#include "backends/windows/delegate.h"
#include "backends/windows/winrt_string.h"
#include "platform/error.h"

namespace lanvoss::windows {
namespace {

class WindowsHostName final : public platform::HostName {
 public:
  explicit WindowsHostName(ComPointer<abi::IHostName> host) : host_(std::move(host)) {}

  std::u16string DisplayName() override {
    return ReadText(host_, &abi::IHostName::get_DisplayName);
  }

 private:
  const ComPointer<abi::IHostName> host_;
};

class WindowsEndpointPair final : public platform::EndpointPair {
 public:
  explicit WindowsEndpointPair(ComPointer<abi::IEndpointPair> pair) : pair_(std::move(pair)) {}

  std::shared_ptr<platform::HostName> LocalHostName() override {
    return HostOf(&abi::IEndpointPair::get_LocalHostName);
  }
  std::shared_ptr<platform::HostName> RemoteHostName() override {
    return HostOf(&abi::IEndpointPair::get_RemoteHostName);
  }

 private:
  template <typename Method>
  std::shared_ptr<platform::HostName> HostOf(Method method) const {
    auto host = Get<abi::IHostName>(pair_, method);
    return host ? std::make_shared<WindowsHostName>(std::move(host)) : nullptr;
  }

  const ComPointer<abi::IEndpointPair> pair_;
};

class WindowsEndpointPairs final : public platform::EndpointPairView {
 public:
  explicit WindowsEndpointPairs(ComPointer<abi::IVectorView<abi::IEndpointPair*>> pairs)
      : pairs_(std::move(pairs)) {}

  std::shared_ptr<platform::EndpointPair> GetAt(std::uint32_t index) override {
    return std::make_shared<WindowsEndpointPair>(Get<abi::IEndpointPair>(
        pairs_, &abi::IVectorView<abi::IEndpointPair*>::GetAt, UINT32{index}));
  }

 private:
  const ComPointer<abi::IVectorView<abi::IEndpointPair*>> pairs_;
};

}  // namespace

WindowsDevice::WindowsDevice(ComPointer<abi::IWiFiDirectDevice> device)
    : device_(std::move(device)) {}

platform::WiFiDirectConnectionStatus WindowsDevice::ConnectionStatus() {
  auto status = platform::WiFiDirectConnectionStatus::Disconnected;
  // An object that is closed may refuse to say that its link is down.
  const HRESULT result = device_->get_ConnectionStatus(&status);
  if (result != static_cast<HRESULT>(platform::kErrorClosed)) {
    Check(result);
  }
  return status;
}

platform::EventToken WindowsDevice::ConnectionStatusChanged(
    platform::PlainHandler<platform::WiFiDirectDevice> handler) {
  return Subscribe(device_, &abi::IWiFiDirectDevice::add_ConnectionStatusChanged,
                   [handler = std::move(handler)](abi::IWiFiDirectDevice* sender, IInspectable*) {
                     WindowsDevice device{ComPointer(sender)};
                     handler(device);
                   });
}

std::shared_ptr<platform::EndpointPairView> WindowsDevice::GetConnectionEndpointPairs() {
  return std::make_shared<WindowsEndpointPairs>(Get<abi::IVectorView<abi::IEndpointPair*>>(
      device_, &abi::IWiFiDirectDevice::GetConnectionEndpointPairs));
}

void WindowsDevice::Close() { Check(device_.As<abi::IClosable>()->Close()); }

}  // namespace lanvoss::windows
