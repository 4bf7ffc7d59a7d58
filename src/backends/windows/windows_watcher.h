// The platform's device watcher.
#pragma once

#include <memory>

#include "backends/windows/com_pointer.h"
#include "backends/windows/winrt_abi.h"
#include "platform/system.h"
#include "platform/wifi_direct.h"

namespace lanvoss::windows {

class WindowsWatcher final : public platform::DeviceWatcher {
 public:
  WindowsWatcher(ComPointer<abi::IDeviceWatcher> watcher, std::shared_ptr<platform::System> system);

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

 private:
  template <typename Add>
  platform::EventToken SubscribeUpdates(Add add, UpdateHandler handler);
  template <typename Add>
  platform::EventToken SubscribePasses(Add add, PassHandler handler);

  const ComPointer<abi::IDeviceWatcher> watcher_;
  const std::shared_ptr<platform::System> system_;  // for what a reported device blocks on
};

}  // namespace lanvoss::windows
