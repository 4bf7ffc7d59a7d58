// A host that keeps the link to a device alive, for as long as it runs or for some seconds:
//
//   keep_alive NAME [SECONDS]
//
// A link can stay up for the platform and yet carry nothing. So the host checks the link and then
// asks for its address, in turn, on a thread of its own and never from inside the callback; while
// the device is away it asks less and less often. The check needs the right to open raw sockets.
//
// The library writes its log to standard output, so what becomes of the link goes to standard
// error.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <future>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

#include "lanvoss/lanvoss.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kCheckInterval(10);
constexpr seconds kFirstPause(1);  // while the device is away; doubled each time
constexpr seconds kLongestPause(300);
constexpr seconds kGiveUpPause(1);
constexpr milliseconds kInterruptPoll(100);

std::atomic<bool> silent = false;
volatile std::sig_atomic_t interrupted = 0;

// Only the log says that a check got no answer.
void OnNotify(std::string kind, std::string message) {
  if (kind == "info" && message.starts_with("(watch) ping done ret:0 ")) {
    silent = true;
  }
}

void Announce(const std::string& state) {
  static std::string last;
  if (state != last) {
    std::fprintf(stderr, "%s\n", state.c_str());
    last = state;
  }
}

void CheckLink(LanvossInterface& lanvoss) {
  silent = false;
  const bool recovered = !lanvoss.PingCheck().empty();
  if (silent) {
    Announce("silent");
    if (!recovered) {
      // A link is recovered once; then a request returns the address of the dead link every time.
      lanvoss.DisConnect("");
    }
  }
}

// The addresses of the link, which is opened if there is none; empty: the device is away.
std::string KeepLink(const std::stop_token& stop, LanvossInterface& lanvoss,
                     const std::string& name) {
  try {
    CheckLink(lanvoss);
    std::string addresses = lanvoss.GetDeviceIp(name);
    if (addresses.empty() && !stop.stop_requested()) {
      addresses = lanvoss.GetDeviceIp(name);  // the first may have closed an old link
    }
    return addresses;
  } catch (const std::exception& error) {
    Announce(error.what());  // of the platform; it may work later
    return {};
  }
}

void SleepUnlessStopped(const std::stop_token& stop, seconds time) {
  std::mutex mutex;
  std::unique_lock lock(mutex);
  std::condition_variable_any().wait_for(lock, stop, time, [] { return false; });
}

void KeepAlive(const std::stop_token& stop, const std::shared_ptr<LanvossInterface>& lanvoss,
               const std::string& name) {
  seconds pause = kFirstPause;
  while (!stop.stop_requested()) {
    const std::string addresses = KeepLink(stop, *lanvoss, name);
    if (addresses.empty()) {
      Announce("down");
      SleepUnlessStopped(stop, pause);
      pause = std::min(2 * pause, kLongestPause);
    } else {
      Announce("up " + addresses);
      pause = kFirstPause;
      SleepUnlessStopped(stop, kCheckInterval);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: keep_alive NAME [SECONDS]\n");
    return 2;
  }
  const auto end = argc > 2 ? Clock::now() + seconds(std::atoi(argv[2])) : Clock::time_point::max();
  std::signal(SIGINT, [](int) { interrupted = 1; });

  const auto lanvoss = getLanvossPtr(&OnNotify, "");
  std::stop_source stop;
  const auto keeper =
      std::async(std::launch::async, KeepAlive, stop.get_token(), lanvoss, std::string(argv[1]));
  while (interrupted == 0 && Clock::now() < end) {
    std::this_thread::sleep_for(kInterruptPoll);
  }

  std::signal(SIGINT, SIG_DFL);  // the platform may hang: the next one ends the process
  stop.request_stop();
  // Releases a request that waits; one that began just afterwards has not noticed, so again.
  while (keeper.wait_for(kGiveUpPause) == std::future_status::timeout) {
    lanvoss->AbortConnect("");
    lanvoss->StopWatch();
  }
  lanvoss->DisConnect("");
  Announce("ended");
}
