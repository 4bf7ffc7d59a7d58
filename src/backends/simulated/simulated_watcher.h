// The platform's device watcher.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>

#include "backends/events/watcher_base.h"
#include "backends/simulated/air_state.h"

namespace lanvoss::simulated {

class SimulatedWatcher final : public events::WatcherBase,
                               public Counted,
                               public std::enable_shared_from_this<SimulatedWatcher> {
 public:
  explicit SimulatedWatcher(std::shared_ptr<AirState> owner);

  platform::DeviceWatcherStatus Status() override;
  void Start() override;
  void Stop() override;

  // What happens around it. A watcher that does not run does not notice.
  void PeerAppeared(std::size_t index);
  void PeerDisappeared(std::size_t index);
  void PeerRenamed(std::size_t index);
  void Abort();

 private:
  // Runs `step` on the thread of the delayed actions after a delay, unless another pass has begun
  // or the watcher is gone by then.
  void Later(std::uint32_t delayMs, std::function<void(SimulatedWatcher&)> step);
  void CompletePass();
  void FinishStop();
  void Report(std::size_t index);
  // A handler has returned: a stop may have waited for it.
  void OnHandlerReturned();
  // These are called under the lock, so that events are sent in the order in which they happen.
  void RaisePlain(const events::EventSource<PassHandler>& source);
  void RaiseUpdate(const events::EventSource<UpdateHandler>& source, std::size_t index);
  template <typename Handler, typename Invoke>
  void Raise(const events::EventSource<Handler>& source, Invoke invoke);
  void StopIfDue();
  bool IsRunning() const {
    return status_ == platform::DeviceWatcherStatus::Started ||
           status_ == platform::DeviceWatcherStatus::EnumerationCompleted;
  }
  void BeforeSubscription() override { air->faults.Enter(Call::kWatcherSubscribe); }
  void BeforeRevocation() override { air->faults.Enter(Call::kWatcherRevoke); }

  const std::shared_ptr<events::EventQueue> queue_;

  // Guarded by the base's lock.
  platform::DeviceWatcherStatus status_ = platform::DeviceWatcherStatus::Created;
  std::uint32_t ignored_ = 0;   // calls of Start that had no effect since the last pass
  bool stopDue_ = false;        // it has been stopping for as long as that takes
  std::size_t underWay_ = 0;    // handlers that have not returned from an event, or not begun
  std::int32_t startedAt_ = 0;  // the clock at the start of the pass
  unsigned pass_ = 0;           // which pass this is, so that steps of an earlier one are dropped
  std::set<std::size_t> seen_;  // the devices that this pass has reported
};

}  // namespace lanvoss::simulated
