// The memory that things take. Prints two numbers: the measured one, and the one to compare it
// with.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <malloc.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include "backends/events/threads.h"
#include "backends/posix/posix_system.h"
#include "bench_rig.h"
#include "devices.h"
#include "registry/cache_file.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::bench {
namespace {

long ResidentBytes() {
  malloc_trim(0);
  long pages = 0;
  std::ifstream file("/proc/self/statm");
  file >> pages >> pages;
  return pages * sysconf(_SC_PAGESIZE);
}

void Print(long measured, long beside) { std::printf("%ld %ld\n", measured, beside); }

// A table of a million devices, and the bytes of their texts.
void MeasureRecords() {
  constexpr std::size_t kRecords = 1'000'000;
  const auto table = std::make_unique<DeviceTable>();
  std::size_t texts = 0;
  const long before = ResidentBytes();
  for (std::size_t number = 0; number < kRecords; ++number) {
    const Device device = DeviceOf(number);
    table->Load(device.id, {MacOf(device.id), device.name, {2024, 3, 1, 9, 5, 3, 40}});
    texts += BytesOf(device);
  }
  Print(ResidentBytes() - before, static_cast<long>(texts));
}

// One of many idle objects, and the memory it may take.
void MeasureIdle() {
  constexpr long kObjects = 1'000;
  constexpr long kLimit = 64 * 1024;
  const simulated::Air air(posix::CreateSystem(), events::RealThreads());
  std::vector<std::shared_ptr<LanvossInterface>> objects(kObjects);
  const long before = ResidentBytes();
  for (auto& object : objects) {
    object = MakeLanvoss({air.System(), air.Radio()}, nullptr, "/nonexistent");
  }
  const long taken = ResidentBytes() - before;
  objects.clear();  // which writes to the log
  Print(taken / kObjects, kLimit);
}

// The process after many rewrites of a file, and after few.
void MeasureRewrites() {
  constexpr int kFew = 100;
  constexpr int kMany = 10'000;
  const std::string path = (WorkDirectory::Path() / "rewritten").string();
  const auto system = posix::CreateSystem();
  const auto rewrite = [&](int times) {
    for (int i = 0; i < times; ++i) {
      WriteCacheFile(*system, path, FormatCache(RecordsOf(1'000)));
    }
    return ResidentBytes();
  };
  const long few = rewrite(kFew);
  Print(rewrite(kMany), few);
}

int Main(int argc, char** argv) {
  const std::map<std::string, std::function<void()>> measures = {
      {"records", MeasureRecords}, {"idle", MeasureIdle}, {"rewrites", MeasureRewrites}};
  const auto measure = measures.find(argc == 2 ? argv[1] : "");
  if (measure == measures.end()) {
    std::fputs("usage: lanvoss_bench_memory records|idle|rewrites\n", stderr);
    return 2;
  }
  measure->second();
  return 0;
}

}  // namespace
}  // namespace lanvoss::bench

int main(int argc, char** argv) { return lanvoss::bench::Main(argc, argv); }
