#include "backends/events/courier.h"

#include <deque>
#include <mutex>
#include <utility>
#include <vector>

namespace lanvoss::events {

class Lane {
 public:
  std::deque<std::function<void()>> waiting;  // guarded by the office's mutex
  bool busy = false;                          // a worker is at it; guarded likewise
};

namespace {

struct Worker {
  explicit Worker(platform::System& system) : hired(system.CreateManualResetEvent(false)) {}

  const std::unique_ptr<platform::Event> hired;  // there is a lane for it, or all has ended
  std::shared_ptr<Lane> lane;                    // guarded by the office's mutex
};

}  // namespace

// Shared with the workers, one of which outlives the Courier when its delivery destroys it.
struct Courier::Office {
  Office(std::shared_ptr<platform::System> owner, std::shared_ptr<Threads> starter)
      : system(std::move(owner)), threads(std::move(starter)) {}

  void Serve(const std::shared_ptr<Worker>& worker);
  std::function<void()> Next(Worker& worker);
  bool Hire(const std::shared_ptr<Lane>& lane);

  const std::shared_ptr<platform::System> system;
  const std::shared_ptr<Threads> threads;

  std::mutex mutex;  // guards everything below
  bool ended = false;
  std::vector<std::shared_ptr<Worker>> workers;
  std::vector<std::shared_ptr<Worker>> idle;
  std::vector<std::unique_ptr<Thread>> running;
};

Courier::Courier(std::shared_ptr<platform::System> system, std::shared_ptr<Threads> threads)
    : office_(std::make_shared<Office>(std::move(system), std::move(threads))) {}

Courier::~Courier() {
  std::vector<std::shared_ptr<Worker>> workers;
  std::vector<std::unique_ptr<Thread>> running;
  {
    const std::lock_guard lock(office_->mutex);
    office_->ended = true;
    workers.swap(office_->workers);
    running.swap(office_->running);
  }
  for (const auto& worker : workers) {
    worker->hired->Set();
  }
}

std::shared_ptr<Lane> Courier::NewLane() { return std::make_shared<Lane>(); }

void Courier::Send(std::shared_ptr<Lane> lane, std::function<void()> deliver) {
  if (lane == nullptr) {
    lane = NewLane();
  }
  const std::lock_guard lock(office_->mutex);
  if (office_->ended) {
    return;
  }
  lane->waiting.push_back(std::move(deliver));
  if (lane->busy) {
    return;
  }
  lane->busy = true;
  if (!office_->Hire(lane)) {
    const auto worker = std::make_shared<Worker>(*office_->system);
    worker->lane = lane;
    office_->workers.push_back(worker);
    office_->running.push_back(
        office_->threads->Start("courier", [office = office_, worker] { office->Serve(worker); }));
  }
}

// Gives the lane to a worker who has nothing to do.
bool Courier::Office::Hire(const std::shared_ptr<Lane>& lane) {
  if (idle.empty()) {
    return false;
  }
  const auto worker = std::move(idle.back());
  idle.pop_back();
  worker->lane = lane;
  worker->hired->Set();
  return true;
}

void Courier::Office::Serve(const std::shared_ptr<Worker>& worker) {
  while (true) {
    worker->hired->Reset();
    while (auto deliver = Next(*worker)) {
      deliver();
    }
    {
      const std::lock_guard lock(mutex);
      if (ended) {
        return;
      }
      idle.push_back(worker);
    }
    worker->hired->Wait(platform::kWaitForever);
  }
}

// The lane's next delivery; none when the lane is empty, which lets it go.
std::function<void()> Courier::Office::Next(Worker& worker) {
  const std::lock_guard lock(mutex);
  if (worker.lane == nullptr || ended) {
    return nullptr;
  }
  if (worker.lane->waiting.empty()) {
    worker.lane->busy = false;
    worker.lane.reset();
    return nullptr;
  }
  auto deliver = std::move(worker.lane->waiting.front());
  worker.lane->waiting.pop_front();
  return deliver;
}

}  // namespace lanvoss::events
