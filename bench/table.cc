// Looking devices up in a table of a million.
#include <benchmark/benchmark.h>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "devices.h"

namespace lanvoss::bench {
namespace {

constexpr std::size_t kRecords = 1'000'000;
constexpr std::size_t kLookUps = 1 << 16;  // different ones, in random order

const DeviceTable& Table() {
  static const DeviceTable table = [] {
    DeviceTable filled;
    for (const auto& [id, record] : RecordsOf(kRecords)) {
      filled.Load(id, record);
    }
    return filled;
  }();
  return table;
}

// The same names in a map and nothing else.
const std::map<std::string, DeviceTable::Records::const_pointer>& Names(const DeviceTable& table) {
  static const auto names = [&table] {
    std::map<std::string, DeviceTable::Records::const_pointer> filled;
    for (const auto& entry : table.AllRecords()) {
      filled.emplace(entry.second.name, &entry);
    }
    return filled;
  }();
  return names;
}

std::vector<Device> LookedUp() {
  std::mt19937 random(1);
  std::vector<Device> devices;
  for (std::size_t i = 0; i < kLookUps; ++i) {
    devices.push_back(DeviceOf(random() % kRecords));
  }
  return devices;
}

// Runs `find` for one device after the other.
template <typename Find>
void LookUp(benchmark::State& state, Find find) {
  const DeviceTable& table = Table();
  const std::vector<Device> devices = LookedUp();
  benchmark::DoNotOptimize(find(table, devices.front()));  // builds the table it searches
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(find(table, devices[next++ % kLookUps]));
  }
}

BENCHMARK_CAPTURE(LookUp, name, [](const DeviceTable& table, const Device& device) {
  return table.IdOf(device.name);
})->Name("look_up/name/library");
BENCHMARK_CAPTURE(LookUp, name_bare, [](const DeviceTable& table, const Device& device) {
  return Names(table).find(device.name);
})->Name("look_up/name/find");
BENCHMARK_CAPTURE(LookUp, id, [](const DeviceTable& table, const Device& device) {
  return table.NameOf(device.id);
})->Name("look_up/id/library");
BENCHMARK_CAPTURE(LookUp, id_bare, [](const DeviceTable& table, const Device& device) {
  return table.AllRecords().find(device.id);
})->Name("look_up/id/find");

}  // namespace
}  // namespace lanvoss::bench
