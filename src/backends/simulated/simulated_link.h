// An opened link to a device.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

#include "backends/events/event_source.h"
#include "backends/simulated/air_state.h"

namespace lanvoss::simulated {

class SimulatedLink final : public platform::WiFiDirectDevice,
                            public Counted,
                            public std::enable_shared_from_this<SimulatedLink> {
 public:
  SimulatedLink(std::shared_ptr<AirState> owner, std::size_t index)
      : Counted(std::move(owner)),
        index_(index),
        openedAt_(air->system->Clock()),
        queue_(air->dispatcher.NewQueue()) {}

  platform::WiFiDirectConnectionStatus ConnectionStatus() override;
  platform::EventToken ConnectionStatusChanged(
      platform::PlainHandler<platform::WiFiDirectDevice> handler) override;
  std::shared_ptr<platform::EndpointPairView> GetConnectionEndpointPairs() override;
  void Close() override;

  std::size_t Index() const { return index_; }
  bool IsUp();
  // Ends the link after `delayMs`, in the given way.
  void EndLink(LinkEnd how, std::uint32_t delayMs);

 private:
  void RaiseStatus();

  const std::size_t index_;
  const std::int32_t openedAt_;
  const std::shared_ptr<events::EventQueue> queue_;

  std::mutex mutex_;  // guards everything below
  bool up_ = true;
  events::EventSource<platform::PlainHandler<platform::WiFiDirectDevice>> statusChanged_;
};

// Asks for a link to the device with this id. Blocks as the platform does; may be none.
std::shared_ptr<platform::WiFiDirectDevice> Open(const std::shared_ptr<AirState>& air,
                                                 const std::u16string& id);

}  // namespace lanvoss::simulated
