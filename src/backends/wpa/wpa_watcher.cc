#include "backends/wpa/wpa_watcher.h"

#include <utility>

#include "backends/wpa/fail.h"
#include "backends/wpa/limits.h"
#include "backends/wpa/wpa_information.h"
#include "platform/error.h"

namespace lanvoss::wpa {

using platform::DeviceWatcherStatus;

WpaWatcher::WpaWatcher(std::shared_ptr<P2pAdapter> adapter)
    : adapter_(std::move(adapter)), queue_(adapter_->dispatcher.NewQueue()) {}

WpaWatcher::~WpaWatcher() {
  if (status_ == DeviceWatcherStatus::Started) {
    adapter_->TheFinder().EndPass();
  }
}

DeviceWatcherStatus WpaWatcher::Status() {
  const std::lock_guard lock(mutex_);
  return status_;
}

void WpaWatcher::Start() {
  {
    const std::lock_guard lock(mutex_);
    if (IsRunning()) {
      throw platform::Error(platform::kErrorIllegalMethodCall, u"The watcher is running.");
    }
    status_ = DeviceWatcherStatus::Started;
    ++pass_;
    seen_.clear();
  }
  if (!adapter_->TheFinder().BeginPass()) {
    FailPass();
    Fail("wpa_supplicant does not look for devices");
  }
  LaterInPass(kLinkedMs, &WpaWatcher::ReportLinks);
  LaterInPass(kQuickFindMs, &WpaWatcher::Widen);
  LaterInPass(kPassMs, &WpaWatcher::CompletePass);
}

// A watch begins its next pass when a pass ends. So this end is reported after a pause, or the
// watch would try without a pause while there is no wpa_supplicant.
void WpaWatcher::FailPass() {
  {
    const std::lock_guard lock(mutex_);
    if (!IsRunning()) {
      return;  // stopped meanwhile
    }
    status_ = DeviceWatcherStatus::Aborted;
  }
  adapter_->TheFinder().EndPass();
  Later(kReturnPauseMs, [](WpaWatcher& watcher, unsigned pass) {
    const std::lock_guard lock(watcher.mutex_);
    if (watcher.status_ == DeviceWatcherStatus::Aborted && watcher.pass_ == pass) {
      watcher.RaisePlain(watcher.stopped_);
    }
  });
}

// Runs a step on a thread of its own, with the pass that asked for it.
void WpaWatcher::Later(std::uint32_t delayMs, const Step& step) {
  unsigned pass = 0;
  {
    const std::lock_guard lock(mutex_);
    pass = pass_;
  }
  const auto run = [weak = weak_from_this(), pass, step] {
    if (const auto watcher = weak.lock()) {
      step(*watcher, pass);
    }
  };
  // Holds nothing: the adapter would live, with its groups, until the step is due.
  adapter_->delayedActions.After(delayMs, [weak = weak_from_this(), run] {
    if (const auto watcher = weak.lock()) {
      watcher->adapter_->dispatcher.Send(nullptr, run);
    }
  });
}

// The same, unless the pass has ended by then.
void WpaWatcher::LaterInPass(std::uint32_t delayMs, void (WpaWatcher::*step)()) {
  Later(delayMs, [step](WpaWatcher& watcher, unsigned pass) {
    if (watcher.IsRunningPass(pass)) {
      (watcher.*step)();
    }
  });
}

bool WpaWatcher::IsRunningPass(unsigned pass) {
  const std::lock_guard lock(mutex_);
  return pass == pass_ && IsRunning();
}

void WpaWatcher::ReportLinks() { adapter_->ReportLinks(); }
void WpaWatcher::Widen() { adapter_->TheFinder().Widen(); }

void WpaWatcher::Stop() { LeaveFor(DeviceWatcherStatus::Stopped); }
void WpaWatcher::Abort() { LeaveFor(DeviceWatcherStatus::Aborted); }

// Ends what runs. The search needs no time to end, so there is no Stopping in between.
void WpaWatcher::LeaveFor(DeviceWatcherStatus status) {
  bool finds = false;
  {
    const std::lock_guard lock(mutex_);
    if (!IsRunning()) {
      return;
    }
    finds = status_ == DeviceWatcherStatus::Started;
    status_ = status;
    RaisePlain(stopped_);
  }
  if (finds) {
    adapter_->TheFinder().EndPass();
  }
}

void WpaWatcher::CompletePass() {
  {
    const std::lock_guard lock(mutex_);
    if (status_ != DeviceWatcherStatus::Started) {
      return;
    }
    status_ = DeviceWatcherStatus::EnumerationCompleted;
    RaisePlain(completed_);
  }
  adapter_->TheFinder().EndPass();
}

void WpaWatcher::Found(const std::string& address, const std::string& name) {
  const std::lock_guard lock(mutex_);
  if (!IsRunning()) {
    return;
  }
  const auto [seen, isNew] = seen_.try_emplace(address, name);
  if (isNew) {
    const auto info = std::make_shared<WpaInformation>(adapter_, address, name);
    // A device found before a stop is not reported after it.
    adapter_->Raise(queue_, added_.Subscribers(),
                    [self = shared_from_this(), info, pass = pass_](const AddedHandler& handler) {
                      if (self->IsRunningPass(pass)) {
                        handler(*self, info);
                      }
                    });
  } else if (std::exchange(seen->second, name) != name) {
    RaiseUpdate(updated_, address);
  }
}

void WpaWatcher::Lost(const std::string& address) {
  const std::lock_guard lock(mutex_);
  if (IsRunning() && seen_.erase(address) == 1) {
    RaiseUpdate(removed_, address);
  }
}

void WpaWatcher::RaisePlain(const events::EventSource<PassHandler>& source) {
  adapter_->Raise(queue_, source.Subscribers(),
                  [self = shared_from_this()](const PassHandler& handler) { handler(*self); });
}

void WpaWatcher::RaiseUpdate(const events::EventSource<UpdateHandler>& source,
                             const std::string& address) {
  const auto update = std::make_shared<WpaInformationUpdate>(address);
  adapter_->Raise(queue_, source.Subscribers(),
                  [self = shared_from_this(), update](const UpdateHandler& handler) {
                    handler(*self, *update);
                  });
}

}  // namespace lanvoss::wpa
