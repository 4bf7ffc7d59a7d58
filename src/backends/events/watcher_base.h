// The half of a device watcher that every backend written here has alike: its subscriptions.
#pragma once

#include <mutex>
#include <utility>

#include "backends/events/event_source.h"
#include "platform/wifi_direct.h"

namespace lanvoss::events {

class WatcherBase : public platform::DeviceWatcher {
 public:
  platform::EventToken Added(AddedHandler handler) override {
    return Subscribe(added_, std::move(handler));
  }
  platform::EventToken Removed(UpdateHandler handler) override {
    return Subscribe(removed_, std::move(handler));
  }
  platform::EventToken Updated(UpdateHandler handler) override {
    return Subscribe(updated_, std::move(handler));
  }
  platform::EventToken EnumerationCompleted(PassHandler handler) override {
    return Subscribe(completed_, std::move(handler));
  }
  platform::EventToken Stopped(PassHandler handler) override {
    return Subscribe(stopped_, std::move(handler));
  }

  void RevokeAdded(platform::EventToken token) override { Revoke(added_, token); }
  void RevokeRemoved(platform::EventToken token) override { Revoke(removed_, token); }
  void RevokeUpdated(platform::EventToken token) override { Revoke(updated_, token); }
  void RevokeEnumerationCompleted(platform::EventToken token) override {
    Revoke(completed_, token);
  }
  void RevokeStopped(platform::EventToken token) override { Revoke(stopped_, token); }

 protected:
  // Called first, without the lock.
  virtual void BeforeSubscription() {}
  virtual void BeforeRevocation() {}

  std::mutex mutex_;  // guards everything below, and the state of the watcher itself
  EventSource<AddedHandler> added_;
  EventSource<UpdateHandler> removed_;
  EventSource<UpdateHandler> updated_;
  EventSource<PassHandler> completed_;
  EventSource<PassHandler> stopped_;

 private:
  template <typename Handler>
  platform::EventToken Subscribe(EventSource<Handler>& source, Handler handler) {
    BeforeSubscription();
    const std::lock_guard lock(mutex_);
    return source.Subscribe(std::move(handler));
  }
  template <typename Handler>
  void Revoke(EventSource<Handler>& source, platform::EventToken token) {
    BeforeRevocation();
    Handler revoked;  // released after the lock
    const std::lock_guard lock(mutex_);
    revoked = source.Revoke(token);
  }
};

}  // namespace lanvoss::events
