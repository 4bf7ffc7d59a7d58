#include "backends/events/event_dispatcher.h"

#include <deque>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace lanvoss::events {

class EventQueue {
 public:
  std::deque<std::function<void()>> waiting;  // guarded by the state's mutex
  bool busy = false;                          // a worker delivers it; guarded by the same mutex
};

namespace {

struct Worker {
  explicit Worker(platform::System& system) : wake(system.CreateManualResetEvent(false)) {}

  const std::unique_ptr<platform::Event> wake;  // there is a queue for it, or all has ended
  std::shared_ptr<EventQueue> queue;            // guarded by the state's mutex
};

}  // namespace

// Shared with the workers, one of which outlives the EventDispatcher when its delivery destroys it.
struct EventDispatcher::State {
  State(std::shared_ptr<platform::System> owner, std::shared_ptr<Threads> starter)
      : system(std::move(owner)), threads(std::move(starter)) {}

  void Serve(const std::shared_ptr<Worker>& worker);
  std::function<void()> Next(Worker& worker);
  bool Assign(const std::shared_ptr<EventQueue>& queue);
  bool StartWorker(const std::shared_ptr<State>& self, const std::shared_ptr<EventQueue>& queue);

  const std::shared_ptr<platform::System> system;
  const std::shared_ptr<Threads> threads;

  std::mutex mutex;  // guards everything below
  bool ended = false;
  std::vector<std::shared_ptr<Worker>> workers;
  std::vector<std::shared_ptr<Worker>> idle;
  std::vector<std::unique_ptr<Thread>> running;
  std::deque<std::shared_ptr<EventQueue>> unserved;  // the system had no thread for them
};

EventDispatcher::EventDispatcher(std::shared_ptr<platform::System> system,
                                 std::shared_ptr<Threads> threads)
    : state_(std::make_shared<State>(std::move(system), std::move(threads))) {}

EventDispatcher::~EventDispatcher() {
  std::vector<std::shared_ptr<Worker>> workers;
  std::vector<std::unique_ptr<Thread>> running;
  {
    const std::lock_guard lock(state_->mutex);
    state_->ended = true;
    workers.swap(state_->workers);
    running.swap(state_->running);
  }
  for (const auto& worker : workers) {
    worker->wake->Set();
  }
}

std::shared_ptr<EventQueue> EventDispatcher::NewQueue() { return std::make_shared<EventQueue>(); }

void EventDispatcher::Send(std::shared_ptr<EventQueue> queue, std::function<void()> deliver) {
  if (queue == nullptr) {
    queue = NewQueue();
  }
  const std::lock_guard lock(state_->mutex);
  if (state_->ended) {
    return;
  }
  queue->waiting.push_back(std::move(deliver));
  if (queue->busy) {
    return;
  }
  queue->busy = true;
  if (!state_->Assign(queue) && !state_->StartWorker(state_, queue)) {
    state_->unserved.push_back(queue);
  }
}

// False: the system has no thread now.
bool EventDispatcher::State::StartWorker(const std::shared_ptr<State>& self,
                                         const std::shared_ptr<EventQueue>& queue) {
  const auto worker = std::make_shared<Worker>(*system);
  worker->queue = queue;
  try {
    running.push_back(threads->Start("events", [self, worker] { self->Serve(worker); }));
  } catch (const std::system_error&) {
    return false;
  }
  workers.push_back(worker);
  return true;
}

// Gives the queue to a worker who has nothing to do.
bool EventDispatcher::State::Assign(const std::shared_ptr<EventQueue>& queue) {
  if (idle.empty()) {
    return false;
  }
  const auto worker = std::move(idle.back());
  idle.pop_back();
  worker->queue = queue;
  worker->wake->Set();
  return true;
}

void EventDispatcher::State::Serve(const std::shared_ptr<Worker>& worker) {
  while (true) {
    worker->wake->Reset();
    while (auto deliver = Next(*worker)) {
      deliver();
    }
    {
      const std::lock_guard lock(mutex);
      if (ended) {
        return;
      }
      if (!unserved.empty()) {
        continue;
      }
      idle.push_back(worker);
    }
    worker->wake->Wait(platform::kWaitForever);
  }
}

// The next delivery of the worker's queue, or of one that has no thread; none when these are empty.
std::function<void()> EventDispatcher::State::Next(Worker& worker) {
  const std::lock_guard lock(mutex);
  if (worker.queue != nullptr && worker.queue->waiting.empty()) {
    worker.queue->busy = false;
    worker.queue.reset();
  }
  if (worker.queue == nullptr && !unserved.empty()) {
    worker.queue = std::move(unserved.front());
    unserved.pop_front();
  }
  if (worker.queue == nullptr || ended) {
    return nullptr;
  }
  auto deliver = std::move(worker.queue->waiting.front());
  worker.queue->waiting.pop_front();
  return deliver;
}

}  // namespace lanvoss::events
