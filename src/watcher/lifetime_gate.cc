#include "watcher/lifetime_gate.h"

#include "platform/error.h"

namespace lanvoss {

std::unique_ptr<platform::Event> CreateEventOrThrow(platform::System& system, bool set) {
  auto event = system.CreateManualResetEvent(set);
  if (event == nullptr) {
    throw platform::Error(platform::kErrorOutOfMemory,
                          u"Lanvoss: the system could not create an event.");
  }
  return event;
}

class LifetimeGate::Waiter {
 public:
  Waiter(LifetimeGate& gate, platform::Event& event) : gate_(gate), event_(&event) {
    const Lock lock(gate_.mutex_);
    gate_.RequireObject();
    gate_.waitedFor_.push_back(event_);
  }
  ~Waiter() {
    const Lock lock(gate_.mutex_);
    auto& all = gate_.waitedFor_;
    all.erase(std::find(all.begin(), all.end(), event_));
  }
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

 private:
  LifetimeGate& gate_;
  platform::Event* const event_;
};

LifetimeGate::LifetimeGate(platform::System& system)
    : system_(system),
      ending_(CreateEventOrThrow(system, false)),
      left_(CreateEventOrThrow(system, false)) {}

void LifetimeGate::CallHost(std::shared_ptr<LifetimeGate> gate, NotifyCallback notify,
                            std::string kind, std::string message) {
  if (notify == nullptr) {
    return;
  }
  const auto endIfGone = [&gate] {
    const Lock lock(gate->mutex_);
    if (gate->destroyed_) {
      throw ObjectGone();
    }
  };
  try {
    notify(std::move(kind), std::move(message));
  } catch (...) {
    endIfGone();
    throw;
  }
  endIfGone();
}

bool LifetimeGate::Wait(platform::Event& event, std::uint32_t timeoutMs) {
  bool isSet = false;
  {
    const Waiter waiter(*this, event);
    isSet = event.Wait(timeoutMs);
  }
  EndIfDestroyed();
  return isSet;
}

void LifetimeGate::Sleep(std::uint32_t milliseconds) {
  bool isDestroyer = false;
  {
    const Lock lock(mutex_);
    RequireObject();
    isDestroyer = destroyer_.has_value();
  }
  if (isDestroyer) {
    system_.Sleep(milliseconds);
  } else if (ending_->Wait(milliseconds)) {
    throw ObjectGone();
  }
}

void LifetimeGate::Reset(platform::Event& event) {
  const Lock lock(mutex_);
  RequireObject();
  event.Reset();
}

void LifetimeGate::EndIfDestroyed() {
  const Lock lock(mutex_);
  RequireObject();
}

void LifetimeGate::BeginDestruction() {
  const Lock lock(mutex_);
  destroyer_ = std::this_thread::get_id();
  ending_->Set();
  WakeAll();
}

void LifetimeGate::Close() {
  while (true) {
    {
      const Lock lock(mutex_);
      closed_ = true;
      if (!OthersInside()) {
        destroyed_ = true;
        ending_.reset();
        left_.reset();
        return;
      }
      left_->Reset();
      WakeAll();  // the stop of the watcher may have reset an event since
    }
    left_->Wait(platform::kWaitForever);
  }
}

bool LifetimeGate::Enter() {
  const Lock lock(mutex_);
  if (closed_) {
    return false;
  }
  inside_.push_back(std::this_thread::get_id());
  return true;
}

void LifetimeGate::Leave() {
  const Lock lock(mutex_);
  inside_.erase(std::find(inside_.begin(), inside_.end(), std::this_thread::get_id()));
  if (closed_ && left_ != nullptr) {
    left_->Set();
  }
}

void LifetimeGate::RequireObject() const {
  if (destroyer_ && *destroyer_ != std::this_thread::get_id()) {
    throw ObjectGone();
  }
}

void LifetimeGate::WakeAll() {
  for (platform::Event* const event : waitedFor_) {
    event->Set();
  }
}

bool LifetimeGate::OthersInside() const {
  return std::any_of(inside_.begin(), inside_.end(),
                     [](std::thread::id thread) { return thread != std::this_thread::get_id(); });
}

}  // namespace lanvoss
