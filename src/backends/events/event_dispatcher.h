// Delivers events on threads of the platform's.
#pragma once

#include <functional>
#include <memory>

#include "backends/events/threads.h"
#include "platform/system.h"

namespace lanvoss::events {

// Events of one queue are delivered one after the other; different queues run side by side.
class EventQueue;

class EventDispatcher {
 public:
  EventDispatcher(std::shared_ptr<platform::System> system, std::shared_ptr<Threads> threads);
  // Drops what has not been delivered and waits for what is being delivered, except for a delivery
  // that it runs inside of.
  ~EventDispatcher();

  std::shared_ptr<EventQueue> NewQueue();
  // Delivers on that queue; with none, on a queue of its own. `deliver` may block; it must not
  // throw.
  void Send(std::shared_ptr<EventQueue> queue, std::function<void()> deliver);

 private:
  struct State;

  const std::shared_ptr<State> state_;
};

}  // namespace lanvoss::events
