// The platform's device watcher.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <set>

#include "backends/simulated/air.h"
#include "backends/simulated/event_source.h"

namespace lanvoss::simulated {

class SimulatedWatcher final : public platform::DeviceWatcher,
                               public Counted,
                               public std::enable_shared_from_this<SimulatedWatcher> {
 public:
  explicit SimulatedWatcher(std::shared_ptr<Air> owner);

  platform::DeviceWatcherStatus Status() override;
  void Start() override;
  void Stop() override;

  platform::EventToken Added(AddedHandler handler) override;
  platform::EventToken Removed(UpdateHandler handler) override;
  platform::EventToken Updated(UpdateHandler handler) override;
  platform::EventToken EnumerationCompleted(PassHandler handler) override;
  platform::EventToken Stopped(PassHandler handler) override;
  void RevokeAdded(platform::EventToken token) override;
  void RevokeRemoved(platform::EventToken token) override;
  void RevokeUpdated(platform::EventToken token) override;
  void RevokeEnumerationCompleted(platform::EventToken token) override;
  void RevokeStopped(platform::EventToken token) override;

  // What happens around it. A watcher that does not run does not notice.
  void PeerAppeared(std::size_t index);
  void PeerDisappeared(std::size_t index);
  void PeerRenamed(std::size_t index);
  void Abort();

 private:
  // Runs `step` on the agenda's thread after a delay, unless another pass has begun or the watcher
  // is gone by then.
  void Later(std::uint32_t delayMs, std::function<void(SimulatedWatcher&)> step);
  void CompletePass();
  void FinishStop();
  void Report(std::size_t index);
  // Called under the lock, so that events are sent in the order in which they happen.
  void RaisePlain(const EventSource<PassHandler>& source);
  void RaiseUpdate(const EventSource<UpdateHandler>& source, std::size_t index);
  bool IsRunning() const {
    return status_ == platform::DeviceWatcherStatus::Started ||
           status_ == platform::DeviceWatcherStatus::EnumerationCompleted;
  }
  template <typename Handler>
  platform::EventToken Subscribe(EventSource<Handler>& source, Handler handler);
  template <typename Handler>
  void Revoke(EventSource<Handler>& source, platform::EventToken token);

  const std::shared_ptr<Lane> lane_;

  std::mutex mutex_;  // guards everything below
  platform::DeviceWatcherStatus status_ = platform::DeviceWatcherStatus::Created;
  std::uint32_t ignored_ = 0;   // calls of Start that had no effect since the last pass
  unsigned pass_ = 0;           // which pass this is, so that steps of an earlier one are dropped
  std::set<std::size_t> seen_;  // the devices that this pass has reported
  EventSource<AddedHandler> added_;
  EventSource<UpdateHandler> removed_;
  EventSource<UpdateHandler> updated_;
  EventSource<PassHandler> completed_;
  EventSource<PassHandler> stopped_;
};

}  // namespace lanvoss::simulated
