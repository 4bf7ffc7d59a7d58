// An open link to a device.
#pragma once

#include <memory>
#include <mutex>

#include "backends/events/event_source.h"
#include "backends/wpa/link.h"
#include "backends/wpa/p2p_adapter.h"

namespace lanvoss::wpa {

// A link to one device. The platform calls it a WiFiDirectDevice, so it keeps that name.
class WpaDevice final : public platform::WiFiDirectDevice,
                        public std::enable_shared_from_this<WpaDevice> {
 public:
  WpaDevice(std::shared_ptr<P2pAdapter> adapter, Link link);
  ~WpaDevice() override;

  platform::WiFiDirectConnectionStatus ConnectionStatus() override;
  platform::EventToken ConnectionStatusChanged(
      platform::PlainHandler<platform::WiFiDirectDevice> handler) override;
  std::shared_ptr<platform::EndpointPairView> GetConnectionEndpointPairs() override;
  void Close() override;

  // Without its DHCP server or client.
  const Link& TheLink() const { return link_; }
  bool IsUp();
  // The link is down from now on, and the subscribers are notified. False: it was down already.
  bool End();

 private:
  const std::shared_ptr<P2pAdapter> adapter_;
  const Link link_;
  const std::shared_ptr<events::EventQueue> queue_;

  std::mutex mutex_;  // guards everything below
  bool up_ = true;
  std::shared_ptr<const void> dhcp_;  // as long as it is up
  events::EventSource<platform::PlainHandler<platform::WiFiDirectDevice>> statusChanged_;
};

}  // namespace lanvoss::wpa
