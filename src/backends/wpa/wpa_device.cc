#include "backends/wpa/wpa_device.h"

#include <string>
#include <utility>

#include "platform/error.h"
#include "platform/unicode.h"

namespace lanvoss::wpa {
namespace {

using platform::WiFiDirectConnectionStatus;

class WpaHostName final : public platform::HostName {
 public:
  explicit WpaHostName(const std::string& address) : address_(platform::Utf8ToUtf16(address)) {}

  std::u16string DisplayName() override { return address_; }

 private:
  const std::u16string address_;
};

// The one pair of a link.
class WpaEndpointPair final : public platform::EndpointPair {
 public:
  explicit WpaEndpointPair(const Link& link)
      : local_(std::make_shared<WpaHostName>(link.local)),
        remote_(std::make_shared<WpaHostName>(link.remote)) {}

  std::shared_ptr<platform::HostName> LocalHostName() override { return local_; }
  std::shared_ptr<platform::HostName> RemoteHostName() override { return remote_; }

 private:
  const std::shared_ptr<platform::HostName> local_;
  const std::shared_ptr<platform::HostName> remote_;
};

class WpaEndpointPairView final : public platform::EndpointPairView {
 public:
  explicit WpaEndpointPairView(const Link& link) : pair_(std::make_shared<WpaEndpointPair>(link)) {}

  std::shared_ptr<platform::EndpointPair> GetAt(std::uint32_t index) override {
    if (index > 0) {
      throw platform::Error(platform::kErrorBounds, u"A link has one pair of endpoints.");
    }
    return pair_;
  }

 private:
  const std::shared_ptr<platform::EndpointPair> pair_;
};

}  // namespace

WpaDevice::WpaDevice(std::shared_ptr<P2pAdapter> adapter, Link link)
    : adapter_(std::move(adapter)),
      link_{link.interface, link.peer, link.local, link.remote},
      queue_(adapter_->dispatcher.NewQueue()),
      dhcp_(std::move(link.dhcp)) {}

WpaDevice::~WpaDevice() {
  if (up_) {
    adapter_->Close(link_.interface);
  }
}

WiFiDirectConnectionStatus WpaDevice::ConnectionStatus() {
  return IsUp() ? WiFiDirectConnectionStatus::Connected : WiFiDirectConnectionStatus::Disconnected;
}

bool WpaDevice::IsUp() {
  const std::lock_guard lock(mutex_);
  return up_;
}

platform::EventToken WpaDevice::ConnectionStatusChanged(
    platform::PlainHandler<platform::WiFiDirectDevice> handler) {
  const std::lock_guard lock(mutex_);
  return statusChanged_.Subscribe(std::move(handler));
}

std::shared_ptr<platform::EndpointPairView> WpaDevice::GetConnectionEndpointPairs() {
  return std::make_shared<WpaEndpointPairView>(link_);
}

void WpaDevice::Close() { adapter_->Close(link_.interface); }

bool WpaDevice::End() {
  std::shared_ptr<const void> dhcp;  // goes after the lock
  const std::lock_guard lock(mutex_);
  if (!std::exchange(up_, false)) {
    return false;
  }
  dhcp.swap(dhcp_);
  adapter_->Raise(
      queue_, statusChanged_.Subscribers(),
      [self = shared_from_this()](
          const platform::PlainHandler<platform::WiFiDirectDevice>& handler) { handler(*self); });
  return true;
}

}  // namespace lanvoss::wpa
