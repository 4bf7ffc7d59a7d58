// An interrupt of the program: the first one makes the running operation end, a second one, before
// that has ended, the process.
#pragma once

#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>

#include "lanvoss/lanvoss.h"

namespace lanvoss::program {

// A thread of its own takes the interrupts, so that it may call the library.
class Interruption {
 public:
  // To be made before any other thread is started.
  Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  // Names the object whose operation an interruption ends. The object is held only while that is
  // being done.
  void Ends(const std::shared_ptr<LanvossInterface>& object);

  bool Happened() const { return Token().stop_requested(); }
  std::stop_token Token() const;

  // What was interrupted has ended: from here on nothing has happened.
  void Renew();

  // Waits for the thread to end. From then on a first interrupt is kept, but nobody takes it.
  void Close();

 private:
  void Listen(const std::stop_token& over);
  void GiveUp();
  std::stop_token BeginInterruption();

  mutable std::mutex mutex_;  // guards what follows, but not the thread
  std::weak_ptr<LanvossInterface> object_;
  std::stop_source arrived_;
  std::stop_source renewed_;
  std::jthread listener_;
};

}  // namespace lanvoss::program
