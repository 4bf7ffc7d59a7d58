// Threads that a backend starts. Whoever owns time must know them, so no simulation starts a
// std::thread by itself.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace lanvoss::events {

class Thread {
 public:
  // Waits for the body to end; called by the body itself, it lets the thread go instead.
  virtual ~Thread() = default;
};

class Threads {
 public:
  virtual ~Threads() = default;

  // Starts a thread. `body` must not throw. The name appears in diagnostics alone.
  virtual std::unique_ptr<Thread> Start(std::string name, std::function<void()> body) = 0;
};

// Ordinary threads in real time.
std::shared_ptr<Threads> RealThreads();

}  // namespace lanvoss::events
