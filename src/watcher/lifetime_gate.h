// The gate through which every operation and every event handler enters the watcher object.
//
// The destructor closes it in two steps. After BeginDestruction the core's own waits on other
// threads end with ObjectGone, so that these threads leave soon. Handlers may still enter, because
// the stop of the watcher needs them. After Close nothing enters, and the destructor waits for the
// routines that are inside on other threads.
//
// It cannot wait for a routine on its own thread: there the host dropped its last reference from
// its callback, so the destructor runs inside this routine. When the callback returns to the
// routine, or throws into it, CallHost ends the routine with ObjectGone before it touches the
// object again.
//
// The gate is shared, so that a late handler finds a closed gate when the object is gone.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "lanvoss/lanvoss.h"

#include "base/guarded.h"
#include "platform/system.h"

namespace lanvoss {

// Thrown in a routine whose object is being destroyed, or has been destroyed; caught at the gate.
// It is no std::exception. Other code catches it only to pass it on.
struct ObjectGone {};

// Runs `body`. What it throws goes to `handle`, which may throw it again. ObjectGone does not:
// after the end of the object there is nothing to handle.
template <typename Body, typename Handle>
void HandleErrors(Body body, Handle handle) {
  try {
    body();
  } catch (const ObjectGone&) {
    throw;
  } catch (...) {
    handle();
  }
}

class LifetimeGate {
 public:
  // Throws when the system cannot make an event.
  explicit LifetimeGate(platform::System& system);

  // Runs an event handler's body, or nothing when the gate is closed.
  template <typename Body>
  static void Run(const std::shared_ptr<LifetimeGate>& gate, Body body) {
    Run(gate, 0, [&body] {
      body();
      return 0;
    });
  }

  // Runs an operation's body and returns its result, or `whenGone` when the gate is closed or the
  // object was destroyed meanwhile.
  template <typename Result, typename Body>
  static Result Run(std::shared_ptr<LifetimeGate> gate, Result whenGone, Body body) {
    if (!gate->Enter()) {
      return whenGone;
    }
    const Leaver leaver{*gate};
    try {
      return body();
    } catch (const ObjectGone&) {
      return whenGone;
    }
  }

  // Calls the host's function, when there is one. Every call into the host goes through here.
  static void CallHost(std::shared_ptr<LifetimeGate> gate, NotifyCallback notify, std::string kind,
                       std::string message);

  // The waits of the library's own: all go through here. Once another thread has begun the
  // destruction, each of them throws ObjectGone, at once.
  bool Wait(platform::Event& event, std::uint32_t timeoutMs);
  void Sleep(std::uint32_t milliseconds);
  // Before a wait for the event: after a reset the end of a wait could be missed.
  void Reset(platform::Event& event);
  // For a loop that waits in calls of the platform alone.
  void EndIfDestroyed();

  // Called once, by the destructor. From now on this thread alone may wait.
  void BeginDestruction();
  // Closes the gate and waits, without a time limit, until it is empty except for this thread.
  void Close();

 private:
  struct Leaver {
    LifetimeGate& gate;
    ~Leaver() { gate.Leave(); }
  };

  // While it lives, its event is set when the destruction begins, and when the gate closes.
  class Waiter;

  bool Enter();
  void Leave();
  bool OthersInside() const LANVOSS_REQUIRES(mutex_);
  // Throws ObjectGone when another thread has begun the destruction.
  void RequireObject() const LANVOSS_REQUIRES(mutex_);
  void WakeAll() LANVOSS_REQUIRES(mutex_);

  platform::System& system_;  // to be used on a thread inside only
  Mutex mutex_;
  std::optional<std::thread::id> destroyer_ LANVOSS_GUARDED_BY(mutex_);
  std::vector<platform::Event*> waitedFor_ LANVOSS_GUARDED_BY(mutex_);  // one entry a waiter
  bool closed_ LANVOSS_GUARDED_BY(mutex_) = false;
  bool destroyed_ LANVOSS_GUARDED_BY(mutex_) = false;
  // One entry for each routine inside, with the thread that runs it.
  std::vector<std::thread::id> inside_ LANVOSS_GUARDED_BY(mutex_);
  // The destruction has begun; somebody has left a closed gate. Released when the gate is empty,
  // since an event must not outlive its System.
  std::unique_ptr<platform::Event> ending_;
  std::unique_ptr<platform::Event> left_;
};

// An event in the given state; throws when the system has no more of them.
std::unique_ptr<platform::Event> CreateEventOrThrow(platform::System& system, bool set);

}  // namespace lanvoss
