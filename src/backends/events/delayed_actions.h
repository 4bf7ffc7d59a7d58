// What a backend is going to do, and when. One thread carries it out, in order.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "backends/events/threads.h"
#include "platform/system.h"

namespace lanvoss::events {

// As a duration: it does not happen.
inline constexpr std::uint32_t kNever = 0xFFFFFFFF;

class DelayedActions {
 public:
  DelayedActions(std::shared_ptr<platform::System> system, Threads& threads);
  // What has not happened yet never will. Waits for the action that runs, unless called by it.
  ~DelayedActions();

  // Runs `action` on the thread of the delayed actions after `delayMs`; never, when that is kNever.
  // Actions of the same moment run in the order in which they were entered. They must neither block
  // nor throw.
  void After(std::uint32_t delayMs, std::function<void()> action);

 private:
  struct Entries;

  const std::shared_ptr<Entries> entries_;
  const std::unique_ptr<Thread> thread_;
};

}  // namespace lanvoss::events
