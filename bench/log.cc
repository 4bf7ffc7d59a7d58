// One line of the log, written to standard output and passed to the host.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <string>

#include "backends/events/threads.h"
#include "backends/posix/posix_system.h"
#include "bench_rig.h"
#include "devices.h"
#include "watcher/log_sink.h"

namespace lanvoss::bench {
namespace {

constexpr char kLine[] = "(watch) FromIdAsync done dt:412ms";

void OnNotify(std::string kind, std::string message) {
  benchmark::DoNotOptimize(kind);
  benchmark::DoNotOptimize(message);
}

void WriteLog(benchmark::State& state) {
  const auto system = posix::CreateSystem();
  const simulated::Air air(system, events::RealThreads());
  const auto radio = air.Radio();
  const LogSink log(*system, *radio, std::make_shared<LifetimeGate>(*system), &OnNotify);
  for (auto _ : state) {
    log.WriteLog(kLine);
  }
}

void FormattedWrite(benchmark::State& state) {
  platform::LocalTime now{2024, 3, 1, 9, 5, 3, 40};
  for (auto _ : state) {
    benchmark::DoNotOptimize(now);
    std::printf("[%04d-%02d-%02d %02d:%02d:%02d.%03d] %s\n", now.year, now.month, now.day, now.hour,
                now.minute, now.second, now.millisecond, kLine);
  }
}

void Spdlog(benchmark::State& state) {
  const auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(
      (WorkDirectory::Path() / "spdlog").string(), true);
  sink->set_pattern("[%Y-%m-%d %H:%M:%S.%e] %v");
  spdlog::logger log("bench", sink);
  for (auto _ : state) {
    log.info(kLine);
  }
}

BENCHMARK(WriteLog)->Name("log/library");
BENCHMARK(FormattedWrite)->Name("log/printf");
BENCHMARK(Spdlog)->Name("log/spdlog");

}  // namespace
}  // namespace lanvoss::bench
