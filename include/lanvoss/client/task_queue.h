// Tasks that run one after the other on a thread of their own.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <utility>

#include "lanvoss/client/runtime.h"

namespace lanvoss::detail {

// A task throws nothing.
class TaskQueue {
 public:
  using Task = std::function<void()>;

  explicit TaskQueue(std::shared_ptr<Runtime> runtime)
      : state_(std::make_shared<State>(std::move(runtime))) {}
  TaskQueue(const TaskQueue&) = delete;
  TaskQueue& operator=(const TaskQueue&) = delete;

  // Runs what was posted before, and ends the thread. From inside a task, the thread ends after it.
  ~TaskQueue() {
    const Lock lock = state_->monitor.Enter();
    state_->isClosed = true;
    state_->monitor.NotifyAll();
  }

  // Must be called before the first task is posted; later calls do nothing. Throws std::exception
  // if there is no thread to be had.
  void Start() {
    {
      const Lock lock = state_->monitor.Enter();
      if (std::exchange(isStarted_, true)) {
        return;
      }
    }
    thread_ = state_->monitor.System().Start([state = state_] { Run(*state); });
  }

  void Post(Task task) {
    const Lock lock = state_->monitor.Enter();
    state_->tasks.push_back(std::move(task));
    state_->monitor.NotifyAll();
  }

  // How many tasks wait.
  std::size_t Length() const {
    const Lock lock = state_->monitor.Enter();
    return state_->tasks.size();
  }

 private:
  struct State {
    explicit State(std::shared_ptr<Runtime> runtime) : monitor(std::move(runtime)) {}
    Monitor monitor;  // guards the others
    std::deque<Task> tasks;
    bool isClosed = false;
  };

  static void Run(State& state) {
    Lock lock = state.monitor.Enter();
    while (true) {
      state.monitor.Wait(lock, [&] { return state.isClosed || !state.tasks.empty(); });
      if (state.tasks.empty()) {
        return;
      }
      Task task = std::move(state.tasks.front());
      state.tasks.pop_front();
      lock.unlock();
      task();
      task = nullptr;  // not under the lock, since it may hold the last reference to something
      lock.lock();
    }
  }

  // Shared with the thread, which a task that destroys the queue outlives.
  const std::shared_ptr<State> state_;
  bool isStarted_ = false;                   // guarded by the monitor
  std::unique_ptr<Runtime::Thread> thread_;  // of the first Start
};

}  // namespace lanvoss::detail
