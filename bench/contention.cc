// Operations of one and of three threads while the platform reports as fast as reports are handled.
#include <atomic>
#include <benchmark/benchmark.h>
#include <memory>
#include <string>
#include <thread>

#include "backends/events/threads.h"
#include "backends/posix/posix_system.h"
#include "base/guarded.h"
#include "bench_rig.h"

namespace lanvoss::bench {
namespace {

constexpr int kMostUndelivered = 16;  // events on their way, so that they do not pile up

// An object whose watcher runs, and a device that keeps changing.
class Busy {
 public:
  Busy() {
    lanvoss->StartWatch("");
    seen_.wait(false);
    events_ = std::jthread([this](const std::stop_token& stop) {
      while (!stop.stop_requested()) {
        ++undelivered_;
        camera_.Rename(u"Cam");
        undelivered_.wait(kMostUndelivered);
      }
    });
  }

 private:
  void OnNotify(const std::string& kind, const std::string& message) {
    if (message.starts_with("(watch) OnDeviceUpdated")) {
      --undelivered_;
      undelivered_.notify_one();
    } else if (kind == "watch") {
      seen_ = true;
      seen_.notify_one();
    }
  }

  std::atomic<int> undelivered_ = 0;
  std::atomic<bool> seen_ = false;
  RecordingHost host_{
      [this](const std::string& kind, const std::string& message) { OnNotify(kind, message); },
      RecordingHost::Records::kNothing};
  simulated::Air air_{posix::CreateSystem(), events::RealThreads(), HabitsWithoutLatency()};
  simulated::PeerHandle camera_ = air_.Add(PeerWithoutLatency(u"Cam"));

 public:
  const std::shared_ptr<LanvossInterface> lanvoss =
      Open({air_.System(), air_.Radio()}, "/nonexistent");

 private:
  std::jthread events_;  // last, so that it ends first
};

std::unique_ptr<Busy> busy;

template <typename Operation>
void Operate(benchmark::State& state, Operation operation) {
  for (auto _ : state) {
    operation(*busy->lanvoss);
  }
}

// The least of an operation: it locks the object to get in, to act, and to get out.
void LockThrice(benchmark::State& state) {
  constexpr int kLocks = 3;
  static Mutex mutex;
  static int guarded = 0;
  for (auto _ : state) {
    for (int i = 0; i < kLocks; ++i) {
      const Lock lock(mutex);
      benchmark::DoNotOptimize(++guarded);
    }
  }
}

// As long as the shortest operation, and nothing is shared: what remains is the share of the cores.
void ShareNothing(benchmark::State& state) {
  constexpr int kSteps = 150;
  for (auto _ : state) {
    for (int i = 0; i < kSteps; ++i) {
      benchmark::DoNotOptimize(i);
    }
  }
}

void OneAndThree(benchmark::internal::Benchmark* benchmark) {
  benchmark->Threads(1)->Threads(3)->UseRealTime();
  benchmark->Setup([](const benchmark::State&) { busy = std::make_unique<Busy>(); });
  benchmark->Teardown([](const benchmark::State&) { busy.reset(); });
}

BENCHMARK(ShareNothing)->Name("contention/nothing")->Apply(OneAndThree);
BENCHMARK(LockThrice)->Name("contention/locks")->Apply(OneAndThree);
BENCHMARK_CAPTURE(Operate, abort, [](LanvossInterface& lanvoss) { lanvoss.AbortConnect(""); })
    ->Name("contention/AbortConnect")
    ->Apply(OneAndThree);
BENCHMARK_CAPTURE(Operate, disconnect, [](LanvossInterface& lanvoss) { lanvoss.DisConnect(""); })
    ->Name("contention/DisConnect")
    ->Apply(OneAndThree);
BENCHMARK_CAPTURE(Operate, unpair, [](LanvossInterface& lanvoss) { lanvoss.Unpair("Other"); })
    ->Name("contention/Unpair")
    ->Apply(OneAndThree);
BENCHMARK_CAPTURE(Operate, check, [](LanvossInterface& lanvoss) { lanvoss.PingCheck(); })
    ->Name("contention/PingCheck")
    ->Apply(OneAndThree);
BENCHMARK_CAPTURE(Operate, start, [](LanvossInterface& lanvoss) { lanvoss.StartWatch(""); })
    ->Name("contention/StartWatch")
    ->Apply(OneAndThree);

}  // namespace
}  // namespace lanvoss::bench
