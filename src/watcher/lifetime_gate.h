// The gate through which every operation and every event handler enters the watcher object.
//
// The destructor closes it: then nobody new gets in, and those inside on other threads are waited
// for. Those inside on the destructor's own thread cannot be waited for; there the host dropped its
// last reference from its callback, so the destructor runs inside of them. When the callback
// returns to such a routine, CallHost ends it with ObjectGone before it touches the object again.
//
// The gate is shared, so that a handler that comes late finds it, closed, when the object is gone.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "lanvoss/lanvoss.h"

#include "platform/system.h"
#include "watcher/guarded.h"

namespace lanvoss {

// Thrown in a routine whose object was destroyed under it, up to the gate. Not a std::exception and
// never caught elsewhere, except to let it pass.
struct ObjectGone {};

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

  // Closes the gate and waits, without a time limit, until it is empty but for this thread.
  void Close();

 private:
  struct Leaver {
    LifetimeGate& gate;
    ~Leaver() { gate.Leave(); }
  };

  bool Enter();
  void Leave();
  bool OthersInside() const LANVOSS_REQUIRES(mutex_);

  Mutex mutex_;
  bool closed_ LANVOSS_GUARDED_BY(mutex_) = false;
  bool destroyed_ LANVOSS_GUARDED_BY(mutex_) = false;
  // One entry for each routine inside, with the thread that runs it.
  std::vector<std::thread::id> inside_ LANVOSS_GUARDED_BY(mutex_);
  // Somebody has left a closed gate. Released when the gate is empty, since the event must not
  // outlive the System.
  std::unique_ptr<platform::Event> left_;
};

// An event in the given state; throws when the system has no more of them.
std::unique_ptr<platform::Event> CreateEventOrThrow(platform::System& system, bool set);

}  // namespace lanvoss
