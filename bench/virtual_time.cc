// How fast virtual time passes from one thread to the next.
#include "backends/simulated/virtual_time.h"

#include <benchmark/benchmark.h>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace lanvoss::bench {
namespace {

// Each round is two switches: to the other thread and back.
void Seeded(benchmark::State& state) {
  const auto time = simulated::VirtualTime::Seeded(1);
  const auto asked = time->CreateManualResetEvent(false);
  const auto answered = time->CreateManualResetEvent(false);
  bool ended = false;
  const auto other = time->Start("other", [&] {
    while (asked->Wait(platform::kWaitForever) && !ended) {
      asked->Reset();
      answered->Set();
    }
  });
  for (auto _ : state) {
    asked->Set();
    answered->Wait(platform::kWaitForever);
    answered->Reset();
  }
  ended = true;
  asked->Set();
}

void Bare(benchmark::State& state) {
  enum class Turn { kMine, kOther, kEnded };
  std::mutex mutex;
  std::condition_variable mine;
  std::condition_variable others;
  Turn turn = Turn::kMine;
  std::jthread other([&] {
    std::unique_lock lock(mutex);
    while (true) {
      others.wait(lock, [&turn] { return turn != Turn::kMine; });
      if (turn == Turn::kEnded) {
        return;
      }
      turn = Turn::kMine;
      mine.notify_one();
    }
  });
  const auto give = [&](Turn next) {
    std::unique_lock lock(mutex);
    turn = next;
    others.notify_one();
    mine.wait(lock, [&turn] { return turn != Turn::kOther; });
  };
  for (auto _ : state) {
    give(Turn::kOther);
  }
  give(Turn::kEnded);
}

BENCHMARK(Seeded)->Name("switch/virtual_time")->UseRealTime();
BENCHMARK(Bare)->Name("switch/hand_over")->UseRealTime();

}  // namespace
}  // namespace lanvoss::bench
