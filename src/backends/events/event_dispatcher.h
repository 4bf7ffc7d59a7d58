// Delivers events on threads of the platform.
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
  // Drops the events that wait, and waits for those that are being delivered. It does not wait for
  // a delivery that it runs inside.
  ~EventDispatcher();

  std::shared_ptr<EventQueue> NewQueue();
  // Delivers on that queue, or without one on a new queue. `deliver` may block; it must not
  // throw. When the system has no further thread, the event waits for one that there is.
  void Send(std::shared_ptr<EventQueue> queue, std::function<void()> deliver);

 private:
  struct State;

  const std::shared_ptr<State> state_;
};

}  // namespace lanvoss::events
