// A host with an event loop of its own and no window:
//
//   event_loop [NAME [SECONDS]]
//
// It handles the library's notifications on the loop's thread. Requests block, so they run on a
// worker, whose results come back to the loop the same way. After SECONDS it gives a request up.
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "lanvoss/lanvoss.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

// Runs what any thread posts, in order, on the thread that calls Run.
class EventLoop {
 public:
  void Post(std::function<void()> task) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    changed_.notify_one();
  }

  // Run returns once everything that has been posted is done.
  void Quit() {
    const std::lock_guard lock(mutex_);
    quitting_ = true;
    changed_.notify_one();
  }

  // Until `end`, if there is one.
  void Run(std::optional<Clock::time_point> end = std::nullopt) {
    std::unique_lock lock(mutex_);
    while (Wait(lock, end) && !tasks_.empty()) {
      const auto task = std::move(tasks_.front());
      tasks_.pop_front();
      lock.unlock();
      task();
      lock.lock();
    }
  }

 private:
  bool Wait(std::unique_lock<std::mutex>& lock, std::optional<Clock::time_point> end) {
    const auto due = [this] { return quitting_ || !tasks_.empty(); };
    if (end) {
      return changed_.wait_until(lock, *end, due);
    }
    changed_.wait(lock, due);
    return true;
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  bool quitting_ = false;
};

constexpr char kDefaultName[] = "Cam-7F21";
constexpr seconds kDefaultPatience(30);

// The callback has no argument of the host's own, so this is where it finds the loop. A host with
// several objects has one such function, and one callback, for each.
EventLoop& HostLoop() {
  static EventLoop loop;
  return loop;
}

void HandleNotification(const std::string& kind, const std::string& message) {
  if (kind != "info") {
    std::printf("on the loop's thread: %s %s\n", kind.c_str(), message.c_str());
  }
}

// On any thread, several at once: does nothing but pass the notification on.
void OnNotify(std::string kind, std::string message) {
  HostLoop().Post([kind = std::move(kind), message = std::move(message)] {
    HandleNotification(kind, message);
  });
}

// On the worker.
void Request(LanvossInterface& lanvoss, const std::string& name) {
  std::string result;
  try {
    result = lanvoss.GetDeviceIp(name);
  } catch (const std::exception& error) {
    result = error.what();
  }
  HostLoop().Post([name, result] {
    std::printf("on the loop's thread: %s has \"%s\"\n", name.c_str(), result.c_str());
    HostLoop().Quit();
  });
}

}  // namespace

int main(int argc, char** argv) {
  const std::string name = argc > 1 ? argv[1] : kDefaultName;
  const seconds patience = argc > 2 ? seconds(std::atoi(argv[2])) : kDefaultPatience;

  auto lanvoss = getLanvossPtr(&OnNotify, "");
  EventLoop requests;
  std::thread worker([&requests] { requests.Run(); });
  requests.Post([&lanvoss, &name] { Request(*lanvoss, name); });
  HostLoop().Run(Clock::now() + patience);

  // A request that still waits is released; then the worker ends, and the object. From there on no
  // notification comes, so those that wait in the loop are the last.
  lanvoss->AbortConnect("");
  lanvoss->StopWatch();
  lanvoss->DisConnect("");
  requests.Quit();
  worker.join();
  lanvoss.reset();
  HostLoop().Quit();
  HostLoop().Run();
}
