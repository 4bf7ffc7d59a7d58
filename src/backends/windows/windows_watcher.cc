#include "backends/windows/windows_watcher.h"

#include <utility>

#include "backends/windows/delegate.h"
#include "backends/windows/windows_information.h"
#include "backends/windows/winrt_string.h"

namespace lanvoss::windows {
namespace {

using abi::IDeviceWatcher;

class WindowsUpdate final : public platform::DeviceInformationUpdate {
 public:
  explicit WindowsUpdate(abi::IDeviceInformationUpdate* borrowed) : update_(borrowed) {}

  std::u16string Id() override { return ReadText(update_, &abi::IDeviceInformationUpdate::get_Id); }

 private:
  const ComPointer<abi::IDeviceInformationUpdate> update_;
};

}  // namespace

WindowsWatcher::WindowsWatcher(ComPointer<IDeviceWatcher> watcher,
                               std::shared_ptr<platform::System> system)
    : watcher_(std::move(watcher)), system_(std::move(system)) {}

platform::DeviceWatcherStatus WindowsWatcher::Status() {
  return Read<platform::DeviceWatcherStatus>(watcher_, &IDeviceWatcher::get_Status);
}

void WindowsWatcher::Start() { Check(watcher_->Start()); }
void WindowsWatcher::Stop() { Check(watcher_->Stop()); }

template <typename Add>
platform::EventToken WindowsWatcher::SubscribeUpdates(Add add, UpdateHandler handler) {
  return Subscribe(watcher_, add,
                   [handler = std::move(handler), system = system_](
                       IDeviceWatcher* sender, abi::IDeviceInformationUpdate* borrowed) {
                     WindowsWatcher watcher{ComPointer(sender), system};
                     WindowsUpdate update(borrowed);
                     handler(watcher, update);
                   });
}

template <typename Add>
platform::EventToken WindowsWatcher::SubscribePasses(Add add, PassHandler handler) {
  return Subscribe(
      watcher_, add,
      [handler = std::move(handler), system = system_](IDeviceWatcher* sender, IInspectable*) {
        WindowsWatcher watcher{ComPointer(sender), system};
        handler(watcher);
      });
}

platform::EventToken WindowsWatcher::Added(AddedHandler handler) {
  return Subscribe(watcher_, &IDeviceWatcher::add_Added,
                   [handler = std::move(handler), system = system_](
                       IDeviceWatcher* sender, abi::IDeviceInformation* information) {
                     WindowsWatcher watcher{ComPointer(sender), system};
                     handler(watcher,
                             std::make_shared<WindowsInformation>(ComPointer(information), system));
                   });
}

platform::EventToken WindowsWatcher::Removed(UpdateHandler handler) {
  return SubscribeUpdates(&IDeviceWatcher::add_Removed, std::move(handler));
}
platform::EventToken WindowsWatcher::Updated(UpdateHandler handler) {
  return SubscribeUpdates(&IDeviceWatcher::add_Updated, std::move(handler));
}
platform::EventToken WindowsWatcher::EnumerationCompleted(PassHandler handler) {
  return SubscribePasses(&IDeviceWatcher::add_EnumerationCompleted, std::move(handler));
}
platform::EventToken WindowsWatcher::Stopped(PassHandler handler) {
  return SubscribePasses(&IDeviceWatcher::add_Stopped, std::move(handler));
}

void WindowsWatcher::RevokeAdded(platform::EventToken token) {
  Check(watcher_->remove_Added({token}));
}
void WindowsWatcher::RevokeRemoved(platform::EventToken token) {
  Check(watcher_->remove_Removed({token}));
}
void WindowsWatcher::RevokeUpdated(platform::EventToken token) {
  Check(watcher_->remove_Updated({token}));
}
void WindowsWatcher::RevokeEnumerationCompleted(platform::EventToken token) {
  Check(watcher_->remove_EnumerationCompleted({token}));
}
void WindowsWatcher::RevokeStopped(platform::EventToken token) {
  Check(watcher_->remove_Stopped({token}));
}

}  // namespace lanvoss::windows
