// Delivers events on threads of the platform's.
#pragma once

#include <functional>
#include <memory>

#include "backends/events/threads.h"
#include "platform/system.h"

namespace lanvoss::events {

// Events of one lane are delivered one after the other; different lanes run side by side.
class Lane;

class Courier {
 public:
  Courier(std::shared_ptr<platform::System> system, std::shared_ptr<Threads> threads);
  // Drops what has not been delivered and waits for what is being delivered, except for a delivery
  // that it runs inside of.
  ~Courier();

  std::shared_ptr<Lane> NewLane();
  // Delivers on that lane; with none, on a lane of its own. `deliver` may block; it must not throw.
  void Send(std::shared_ptr<Lane> lane, std::function<void()> deliver);

 private:
  struct Office;

  const std::shared_ptr<Office> office_;
};

}  // namespace lanvoss::events
