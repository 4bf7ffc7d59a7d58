// A host that keeps the link to a device alive until Ctrl-C, or for some seconds:
//
//   keep_alive NAME [SECONDS]
//
// The library writes its log to standard output, so what becomes of the link goes to standard
// error. A link is checked only if the process has the right to open raw sockets.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>

#include "lanvoss/client.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds kInterruptPoll(100);

volatile std::sig_atomic_t interrupted = 0;

void Print(const lanvoss::LinkChange& change, const std::string& name) {
  using State = lanvoss::LinkChange::State;
  std::string text;
  switch (change.state) {
    case State::kUp:
      text = "up " + change.outcome.link->local + "," + change.outcome.link->remote;
      if (change.outage.count() > 0) {
        text += " after " + std::to_string(change.outage.count()) + " ms";
      }
      break;
    case State::kDown:
      text = "down: " + lanvoss::Explain(change.outcome, name);
      break;
    case State::kSilent:
      text = "silent, pairing again";
      break;
    case State::kUnchecked:
      text = "not checked: " + change.outcome.words;
      break;
  }
  std::fprintf(stderr, "%s\n", text.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: keep_alive NAME [SECONDS]\n");
    return 2;
  }
  const std::string name = argv[1];
  const auto end = argc > 2 ? Clock::now() + seconds(std::atoi(argv[2])) : Clock::time_point::max();
  std::signal(SIGINT, [](int) { interrupted = 1; });
  try {
    lanvoss::Client client;
    const auto keeper =
        client.Keep(name, {}, [&name](const lanvoss::LinkChange& change) { Print(change, name); });
    while (interrupted == 0 && Clock::now() < end) {
      std::this_thread::sleep_for(kInterruptPoll);
    }
    std::signal(SIGINT, SIG_DFL);  // the platform may hang: the next one ends the process
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  std::fprintf(stderr, "ended\n");
}
