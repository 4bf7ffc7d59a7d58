// A function of the host's, called on the core's thread for handlers.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "lanvoss/client/core.h"

namespace lanvoss::detail {

// So many calls of handlers can wait, while one does not return. Later ones are dropped.
inline constexpr std::size_t kMaxWaitingCalls = 10'000;

template <class Argument>
class Handler {
 public:
  using Function = std::function<void(const Argument& argument)>;

  Handler(std::shared_ptr<Core> core, Function function)
      : core_(std::move(core)), state_(std::make_shared<State>(std::move(function))) {
    if (state_->function != nullptr) {
      core_->Handlers().Start();
    }
  }
  Handler(const Handler&) = delete;
  Handler& operator=(const Handler&) = delete;
  // Waits until a call has returned, unless it runs inside of it. After that there is none.
  ~Handler() {
    Monitor& monitor = core_->State();
    Lock lock = monitor.Enter();
    state_->isOver = true;
    monitor.Wait(lock, [this] {
      return state_->caller == std::thread::id() || state_->caller == std::this_thread::get_id();
    });
  }

  // On any thread, perhaps under the core's lock. The call follows soon.
  void Call(Argument argument) {
    if (state_->function == nullptr || core_->Handlers().Length() >= kMaxWaitingCalls) {
      return;
    }
    core_->Handlers().Post([core = core_, state = state_, argument = std::move(argument)] {
      CallNow(*core, *state, argument);
    });
  }

 private:
  struct State {
    explicit State(Function ofHost) : function(std::move(ofHost)) {}
    const Function function;
    // Guarded by the core's lock.
    bool isOver = false;
    std::thread::id caller;  // of the call that runs
  };

  static void CallNow(Core& core, State& state, const Argument& argument) {
    {
      const Lock lock = core.State().Enter();
      if (state.isOver) {
        return;
      }
      state.caller = std::this_thread::get_id();
    }
    try {
      state.function(argument);
    } catch (...) {
      // It ends the call, and nothing else.
    }
    const Lock lock = core.State().Enter();
    state.caller = {};
    core.State().NotifyAll();
  }

  const std::shared_ptr<Core> core_;
  const std::shared_ptr<State> state_;
};

}  // namespace lanvoss::detail
