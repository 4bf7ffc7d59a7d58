// A host with an event loop of its own and no window:
//
//   event_loop [NAME [SECONDS [CANCEL]]]
//
// The request runs in the background, for SECONDS at most. Its outcome, and the devices that are
// reported meanwhile, come back to the loop. After CANCEL seconds the loop gives the request up, as
// a user would who has waited long enough.
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "lanvoss/client.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

// Runs what any thread posts, in the order of the times when it is due, on the thread of Run.
class EventLoop {
 public:
  void Post(std::function<void()> task, seconds delay = seconds(0)) {
    const std::lock_guard<std::mutex> lock(mutex_);
    tasks_.emplace(Clock::now() + delay, std::move(task));
    changed_.notify_one();
  }

  // On the thread of Run, which then returns.
  void Quit() { isOver_ = true; }

  void Run() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!isOver_) {
      if (tasks_.empty()) {
        changed_.wait(lock);
      } else if (const auto due = tasks_.begin()->first; due > Clock::now()) {
        changed_.wait_until(lock, due);
      } else {
        const auto task = tasks_.extract(tasks_.begin());
        lock.unlock();
        task.mapped()();
        lock.lock();
      }
    }
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::multimap<Clock::time_point, std::function<void()>> tasks_;  // guarded by the mutex
  bool isOver_ = false;
};

constexpr char kDefaultName[] = "Cam-7F21";
constexpr seconds kDefaultTimeout(30);

void Print(const std::string& text) { std::printf("on the loop's thread: %s\n", text.c_str()); }

void Run(const std::string& name, seconds timeout, std::optional<seconds> cancelAfter) {
  EventLoop loop;  // outlives the client, whose threads post to it
  lanvoss::ClientOptions clientOptions;
  clientOptions.onNotification = [&loop](const lanvoss::Notification& notification) {
    if (notification.kind == "watch") {
      loop.Post([device = notification.message] { Print(device + " is in range"); });
    }
  };
  lanvoss::Client client(std::move(clientOptions));

  lanvoss::ConnectOptions options;
  options.timeout = timeout;
  const auto request = client.ConnectAsync(name, options, [&](const lanvoss::Outcome& outcome) {
    loop.Post([&loop, &name, outcome] {
      Print(outcome ? name + " has " + outcome.link->remote : lanvoss::Explain(outcome, name));
      loop.Quit();
    });
  });
  if (cancelAfter) {
    loop.Post([&request] { request->Cancel(); }, *cancelAfter);
  }
  loop.Run();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::string name = argc > 1 ? argv[1] : kDefaultName;
    const seconds timeout = argc > 2 ? seconds(std::atoi(argv[2])) : kDefaultTimeout;
    Run(name, timeout, argc > 3 ? std::optional(seconds(std::atoi(argv[3]))) : std::nullopt);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
