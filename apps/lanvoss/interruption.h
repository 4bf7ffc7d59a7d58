// Ctrl-C and SIGTERM: the first one makes the running operation end, the second one the process.
#pragma once

#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>

#include "lanvoss/lanvoss.h"

namespace lanvoss::program {

// A thread of its own takes the signals, so nothing but the second one runs in a signal handler.
class Interruption {
 public:
  // Keeps the signals away from this thread and from all that it starts later; so it is made before
  // any other thread.
  Interruption();
  ~Interruption() { Close(); }
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  // Names the object whose operation an interruption ends. The object is held only while that is
  // being done.
  void Ends(const std::shared_ptr<LanvossInterface>& object);

  bool Happened() const { return arrived_.stop_requested(); }
  std::stop_token Token() const { return arrived_.get_token(); }

  // Waits for the thread to end. From then on signals are kept, but nobody takes them.
  void Close();

 private:
  void Listen();
  void GiveUp();

  std::stop_source arrived_;
  std::mutex mutex_;
  std::weak_ptr<LanvossInterface> object_;  // guarded by mutex_
  std::thread listener_;
};

}  // namespace lanvoss::program
