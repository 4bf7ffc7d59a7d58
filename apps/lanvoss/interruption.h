// An interrupt of the program: the first one makes the running operation end, a second one, before
// that has ended, the process.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "lanvoss/lanvoss.h"

#include "wake_up.h"

namespace lanvoss::program {

// A thread of its own takes the interrupts, so that it may call the library.
class Interruption {
 public:
  // To be made before any other thread is started. `onInterrupt` is called on the thread of its
  // own, as soon as Happened() holds.
  explicit Interruption(std::function<void()> onInterrupt);
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;
  ~Interruption();

  // Names the object whose operation an interruption ends. The object is held only while that is
  // being done.
  void Ends(const std::shared_ptr<LanvossInterface>& object);

  bool Happened() const { return happened_; }

  // What was interrupted has ended: from here on nothing has happened.
  void Renew();

  // Waits for the thread to end. From then on a first interrupt is kept, but nobody takes it.
  void Close();

 private:
  void Listen();
  void GiveUp();

  const std::function<void()> onInterrupt_;
  std::mutex mutex_;  // guards the object
  std::weak_ptr<LanvossInterface> object_;
  std::atomic<bool> happened_ = false;
  std::atomic<bool> isClosed_ = false;
  WakeUp renewedOrClosed_;
  std::thread listener_;
};

}  // namespace lanvoss::program
