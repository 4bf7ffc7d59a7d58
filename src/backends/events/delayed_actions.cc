#include "backends/events/delayed_actions.h"

#include <map>
#include <mutex>
#include <utility>

namespace lanvoss::events {

// Shared with the thread, which outlives the DelayedActions when one of its actions destroys it.
struct DelayedActions::Entries {
  explicit Entries(std::shared_ptr<platform::System> owner)
      : system(std::move(owner)), changed(system->CreateManualResetEvent(false)) {}

  std::function<void()> NextOrWait(std::uint32_t& waitMs);
  void Run();

  const std::shared_ptr<platform::System> system;
  const std::unique_ptr<platform::Event> changed;

  std::mutex mutex;  // guards everything below
  // By due time; equal times keep their order.
  std::multimap<std::int64_t, std::function<void()>> byTime;
  std::int64_t clock = 0;  // the system's clock without its wrap
  bool ended = false;

  std::int64_t Now() {
    const auto ahead =
        static_cast<std::uint32_t>(system->Clock()) - static_cast<std::uint32_t>(clock);
    clock += static_cast<std::int32_t>(ahead);
    return clock;
  }
};

DelayedActions::DelayedActions(std::shared_ptr<platform::System> system, Threads& threads)
    : entries_(std::make_shared<Entries>(std::move(system))),
      thread_(threads.Start("delayed", [entries = entries_] { entries->Run(); })) {}

DelayedActions::~DelayedActions() {
  std::multimap<std::int64_t, std::function<void()>> dropped;
  {
    const std::lock_guard lock(entries_->mutex);
    entries_->ended = true;
    dropped.swap(entries_->byTime);
  }
  entries_->changed->Set();
}

void DelayedActions::After(std::uint32_t delayMs, std::function<void()> action) {
  if (delayMs == kNever) {
    return;
  }
  {
    const std::lock_guard lock(entries_->mutex);
    entries_->byTime.emplace(entries_->Now() + delayMs, std::move(action));
  }
  entries_->changed->Set();
}

void DelayedActions::Entries::Run() {
  while (true) {
    changed->Reset();
    std::uint32_t waitMs = platform::kWaitForever;
    if (auto action = NextOrWait(waitMs)) {
      action();
    } else if (waitMs == 0) {
      return;
    } else {
      changed->Wait(waitMs);
    }
  }
}

// The action that is due; else none and how long to wait for the next one, 0 when all has ended.
std::function<void()> DelayedActions::Entries::NextOrWait(std::uint32_t& waitMs) {
  const std::lock_guard lock(mutex);
  if (ended) {
    waitMs = 0;
    return nullptr;
  }
  if (byTime.empty()) {
    return nullptr;
  }
  const auto next = byTime.begin();
  const std::int64_t now = Now();
  if (next->first > now) {
    waitMs = static_cast<std::uint32_t>(next->first - now);
    return nullptr;
  }
  auto action = std::move(next->second);
  byTime.erase(next);
  return action;
}

}  // namespace lanvoss::events
