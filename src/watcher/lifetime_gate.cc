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

LifetimeGate::LifetimeGate(platform::System& system) : left_(CreateEventOrThrow(system, false)) {}

void LifetimeGate::CallHost(std::shared_ptr<LifetimeGate> gate, NotifyCallback notify,
                            std::string kind, std::string message) {
  if (notify == nullptr) {
    return;
  }
  notify(std::move(kind), std::move(message));
  const Lock lock(gate->mutex_);
  if (gate->destroyed_) {
    throw ObjectGone();
  }
}

void LifetimeGate::Close() {
  while (true) {
    {
      const Lock lock(mutex_);
      closed_ = true;
      if (!OthersInside()) {
        destroyed_ = true;
        left_.reset();
        return;
      }
      left_->Reset();
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

bool LifetimeGate::OthersInside() const {
  return std::any_of(inside_.begin(), inside_.end(),
                     [](std::thread::id thread) { return thread != std::this_thread::get_id(); });
}

}  // namespace lanvoss
