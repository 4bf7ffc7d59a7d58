// An interrupt of the program. The first one ends the running operation; a second one, before the
// operation has ended, ends the process.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

#include "wake_up.h"

namespace lanvoss::program {

// A thread of its own takes the interrupts, so that it may call the library.
class Interruption {
 public:
  // Must be made before any other thread is started. `onInterrupt` is called on the thread of its
  // own, as soon as Happened() is true.
  explicit Interruption(std::function<void()> onInterrupt);
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;
  ~Interruption();

  bool Happened() const { return happened_; }

  // The interrupted operation has ended: Happened() is false again.
  void Renew();

  // Waits for the thread to end. After that no interrupt has an effect.
  void Close();

 private:
  void Listen();

  const std::function<void()> onInterrupt_;
  std::atomic<bool> happened_ = false;
  std::atomic<bool> isClosed_ = false;
  WakeUp renewedOrClosed_;
  std::thread listener_;
};

}  // namespace lanvoss::program
