// A watcher: bounded searches of wpa_supplicant.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "backends/events/watcher_base.h"
#include "backends/wpa/p2p_adapter.h"

namespace lanvoss::wpa {

class WpaWatcher final : public events::WatcherBase,
                         public std::enable_shared_from_this<WpaWatcher> {
 public:
  explicit WpaWatcher(std::shared_ptr<P2pAdapter> adapter);
  ~WpaWatcher() override;

  platform::DeviceWatcherStatus Status() override;
  void Start() override;
  void Stop() override;

  // What happens around it. A watcher that does not run does not notice.
  void Found(const std::string& address, const std::string& name);
  void Lost(const std::string& address);
  void Abort();

 private:
  using Step = std::function<void(WpaWatcher& watcher, unsigned pass)>;
  void Later(std::uint32_t delayMs, const Step& step);
  void LaterInPass(std::uint32_t delayMs, void (WpaWatcher::*step)());
  bool IsRunningPass(unsigned pass);
  void FailPass();
  void ReportLinks();
  void Widen();
  void CompletePass();
  bool IsRunning() const {
    return status_ == platform::DeviceWatcherStatus::Started ||
           status_ == platform::DeviceWatcherStatus::EnumerationCompleted;
  }
  void LeaveFor(platform::DeviceWatcherStatus status);
  // Called under the lock, so that events are sent in the order in which they happen.
  void RaisePlain(const events::EventSource<PassHandler>& source);
  void RaiseUpdate(const events::EventSource<UpdateHandler>& source, const std::string& address);

  const std::shared_ptr<P2pAdapter> adapter_;
  const std::shared_ptr<events::EventQueue> queue_;

  // Guarded by the base's lock.
  platform::DeviceWatcherStatus status_ = platform::DeviceWatcherStatus::Created;
  unsigned pass_ = 0;                        // which pass this is
  std::map<std::string, std::string> seen_;  // names by address, as this pass has reported them
};

}  // namespace lanvoss::wpa
