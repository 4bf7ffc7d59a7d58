// Wakes a thread that waits for several things at once.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace lanvoss::program {

// One thread waits, and after each return checks whether what it waits for has happened. Any thread
// that makes it happen calls Wake. A wake-up while nobody waits ends the next wait.
class WakeUp {
 public:
  using Clock = std::chrono::steady_clock;

  void Wake() {
    {
      const std::lock_guard lock(mutex_);
      isWoken_ = true;
    }
    woken_.notify_one();
  }

  void Wait() {
    std::unique_lock lock(mutex_);
    woken_.wait(lock, [this] { return isWoken_; });
    isWoken_ = false;
  }

  // Waits until `end` at most.
  void WaitUntil(Clock::time_point end) {
    std::unique_lock lock(mutex_);
    woken_.wait_until(lock, end, [this] { return isWoken_; });
    isWoken_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable woken_;
  bool isWoken_ = false;  // guarded by the mutex
};

}  // namespace lanvoss::program
