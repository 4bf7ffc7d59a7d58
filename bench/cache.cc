// The cache file: loading it, writing it, and a burst of new devices, each of which writes it.
#include <algorithm>
#include <array>
#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <malloc.h>
#include <map>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "backends/events/threads.h"
#include "backends/posix/posix_system.h"
#include "bench_rig.h"
#include "devices.h"
#include "registry/cache_file.h"
#include "registry/split_text.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::bench {
namespace {

constexpr std::size_t kBurst = 1'000;  // devices
constexpr std::size_t kFields = 5;     // of a line

std::size_t CountOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

std::string CachePathOf(std::size_t count) {
  return CacheDirectoryOf(count).string() + kCacheFileName;
}

// ---- Loading

// A new object, which writes every line to standard output.
void LoadObject(benchmark::State& state) {
  const simulated::Air air(posix::CreateSystem(), events::RealThreads());
  const platform::Platform platform{air.System(), air.Radio()};
  const std::string directory = CacheDirectoryOf(CountOf(state)).string();
  for (auto _ : state) {
    benchmark::DoNotOptimize(MakeLanvoss(platform, nullptr, directory));
  }
}

// The same without the log: the file into the table.
void LoadTable(benchmark::State& state) {
  const auto system = posix::CreateSystem();
  const std::string path = CachePathOf(CountOf(state));
  for (auto _ : state) {
    DeviceTable table;
    const std::string content = ReadCacheFile(*system, path);
    for (const auto& text : SplitText(content, "\n")) {
      if (auto line = ParseCacheLine(text)) {
        table.Load(std::move(line->id), std::move(line->record));
      }
    }
    benchmark::DoNotOptimize(table);
  }
}

// The file into one record after the other.
void Parse(benchmark::State& state) {
  const auto system = posix::CreateSystem();
  const std::string path = CachePathOf(CountOf(state));
  for (auto _ : state) {
    const std::string content = ReadCacheFile(*system, path);
    for (const auto& text : SplitText(content, "\n")) {
      benchmark::DoNotOptimize(ParseCacheLine(text));
    }
  }
}

// Reads the bytes and hands the fields of each line to `take`, as bare as can be.
template <typename Take>
void SplitBare(const std::string& path, Take take) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  std::fseek(file, 0, SEEK_END);
  const auto size = static_cast<std::size_t>(std::ftell(file));
  std::rewind(file);
  const auto content = std::make_unique_for_overwrite<char[]>(size);
  benchmark::DoNotOptimize(std::fread(content.get(), 1, size, file));
  std::fclose(file);
  const char* const end = content.get() + size;
  const auto until = [](const char* from, char mark, const char* limit) {
    const void* found = std::memchr(from, mark, static_cast<std::size_t>(limit - from));
    return found == nullptr ? limit : static_cast<const char*>(found);
  };
  for (const char* line = content.get(); line < end;) {
    const char* const lineEnd = until(line, '\n', end);
    std::array<std::string_view, kFields> fields;
    for (auto& field : fields) {
      const char* const fieldEnd = until(line, '|', lineEnd);
      field = std::string_view(line, fieldEnd);
      line = fieldEnd + 1;
    }
    take(fields);
    line = lineEnd + 1;
  }
}

// Finds the fields, and does nothing with them.
void Split(benchmark::State& state) {
  const std::string path = CachePathOf(CountOf(state));
  for (auto _ : state) {
    SplitBare(path, [](const auto& fields) { benchmark::DoNotOptimize(fields); });
  }
}

// The least that fills two maps with the fields. Trusts every line, and leaves the stamps texts.
void LoadByHand(benchmark::State& state) {
  const std::string path = CachePathOf(CountOf(state));
  for (auto _ : state) {
    DeviceTable::Records records;
    std::map<std::string, DeviceTable::Records::const_pointer> names;
    SplitBare(path, [&](const auto& fields) {
      const auto stored =
          records.try_emplace(records.end(), std::string(fields[1]),
                              DeviceRecord{std::string(fields[2]), std::string(fields[3]), {}});
      names.try_emplace(std::string(fields[3]), &*stored);
    });
    benchmark::DoNotOptimize(names);
  }
}

class Database {
 public:
  explicit Database(const std::filesystem::path& path) {
    if (sqlite3_open(path.c_str(), &database_) != SQLITE_OK) {
      std::abort();
    }
  }
  ~Database() { sqlite3_close(database_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void Run(const char* statement) {
    if (sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) != SQLITE_OK) {
      std::abort();
    }
  }
  // Runs a statement, and `row` for each row of its result.
  template <typename Row>
  void ForEach(const char* text, const std::vector<std::string>& values, Row row) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database_, text, -1, &statement, nullptr);
    for (std::size_t i = 0; i < values.size(); ++i) {
      sqlite3_bind_text(statement, static_cast<int>(i + 1), values[i].c_str(), -1, SQLITE_STATIC);
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
      row(statement);
    }
    sqlite3_finalize(statement);
  }

 private:
  sqlite3* database_ = nullptr;
};

std::filesystem::path DatabaseOf(std::size_t count) {
  const auto path = CacheDirectoryOf(count) / "sqlite";
  if (!std::filesystem::exists(path)) {
    Database database(path);
    database.Run(
        "BEGIN; CREATE TABLE device(id TEXT PRIMARY KEY, mac TEXT, name TEXT, seen TEXT)"
        " WITHOUT ROWID");
    for (const auto& [id, record] : RecordsOf(count)) {
      database.ForEach("INSERT INTO device VALUES(?, ?, ?, ?)",
                       {id, record.mac, record.name, "2024-03-01 09:05:03.040"}, [](auto*) {});
    }
    database.Run("COMMIT");
  }
  return path;
}

std::string_view TextIn(sqlite3_stmt* row, int column) {
  const auto length = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
  return {reinterpret_cast<const char*>(sqlite3_column_text(row, column)), length};
}

constexpr char kEveryDevice[] = "SELECT id, mac, name, seen FROM device ORDER BY id";

void SqliteRows(benchmark::State& state) {
  const auto path = DatabaseOf(CountOf(state));
  for (auto _ : state) {
    Database(path).ForEach(kEveryDevice, {}, [](sqlite3_stmt* row) {
      for (int column = 0; column < 4; ++column) {
        benchmark::DoNotOptimize(TextIn(row, column));
      }
    });
  }
}

// The stamps stay texts, which favours it.
void SqliteTable(benchmark::State& state) {
  const auto path = DatabaseOf(CountOf(state));
  for (auto _ : state) {
    DeviceTable table;
    Database(path).ForEach(kEveryDevice, {}, [&table](sqlite3_stmt* row) {
      benchmark::DoNotOptimize(TextIn(row, 3));
      table.Load(std::string(TextIn(row, 0)),
                 {std::string(TextIn(row, 1)), std::string(TextIn(row, 2)), {}});
    });
    benchmark::DoNotOptimize(table);
  }
}

// ---- Writing

void WriteBare(const std::string& path, std::string_view content) {
  std::FILE* file = std::fopen(path.c_str(), "wb+");
  benchmark::DoNotOptimize(std::fwrite(content.data(), 1, content.size(), file));
  std::fclose(file);
}

void Write(benchmark::State& state) {
  const DeviceTable::Records& records = RecordsOf(CountOf(state));
  const std::string path = (WorkDirectory::Path() / "written").string() + kCacheFileName;
  std::filesystem::create_directory(WorkDirectory::Path() / "written");
  const auto system = posix::CreateSystem();
  for (auto _ : state) {
    WriteCacheFile(*system, path, FormatCache(records));
  }
}

void WriteOnce(benchmark::State& state) {
  const std::string content = FormatCache(RecordsOf(CountOf(state)));
  const std::string path = (WorkDirectory::Path() / "written_bare").string();
  for (auto _ : state) {
    WriteBare(path, content);
  }
}

// The least work that takes the texts from the records. There are zeros instead of numbers and
// stamps.
void WriteCopied(benchmark::State& state) {
  const DeviceTable::Records& records = RecordsOf(CountOf(state));
  const std::string path = (WorkDirectory::Path() / "written_copied").string();
  constexpr std::size_t kNumbers = sizeof "10000||||2024-03-01 09:05:03.040";
  constexpr std::size_t kMostLength = 128;  // of a line
  for (auto _ : state) {
    std::string content;
    content.reserve(records.size() * kMostLength);
    for (const auto& [id, record] : records) {
      content.append(kNumbers, '0').append(id).append(record.mac).append(record.name);
    }
    WriteBare(path, content);
  }
}

// ---- A burst of new devices

void Burst(benchmark::State& state) {
  const auto directory = WorkDirectory::Path() / "burst";
  std::filesystem::create_directory(directory);
  simulated::Air air(posix::CreateSystem(), events::RealThreads(), HabitsWithoutLatency());
  std::atomic<std::size_t> reported = 0;
  const RecordingHost host(
      [&](const std::string& kind, const std::string&) {
        if (kind == "watch" && ++reported == kBurst) {
          reported.notify_one();
        }
      },
      RecordingHost::Records::kNothing);
  for (std::size_t number = 0; number < kBurst; ++number) {
    const Device device = DeviceOf(number);
    air.Add(PeerWithoutLatency(std::u16string(device.name.begin(), device.name.end()),
                               std::u16string(device.id.begin(), device.id.end())));
  }
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(directory / "deviceinfo.bin");
    reported = 0;
    auto lanvoss = Open({air.System(), air.Radio()}, directory.string());
    state.ResumeTiming();
    lanvoss->StartWatch("");
    for (std::size_t seen = 0; (seen = reported) < kBurst;) {
      reported.wait(seen);
    }
    lanvoss->StopWatch();  // returns after the last report's handler, and so after its write
    state.PauseTiming();
    lanvoss.reset();
    state.ResumeTiming();
  }
}

void BurstBare(benchmark::State& state) {
  const std::string content = FormatCache(RecordsOf(kBurst));
  const std::string path = (WorkDirectory::Path() / "burst_bare").string();
  for (auto _ : state) {
    for (std::size_t end = content.find('\n'); end != std::string::npos;
         end = content.find('\n', end + 1)) {
      WriteBare(path, std::string_view(content).substr(0, end + 1));
    }
  }
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("")->Arg(100)->Arg(10'000)->Arg(1'000'000)->UseRealTime();
  // Or the next case would pay for searching the memory that a million records have freed.
  benchmark->Setup([](const benchmark::State&) { malloc_trim(0); });
}

BENCHMARK(LoadObject)->Name("load/object")->Apply(Sizes);
BENCHMARK(LoadTable)->Name("load/table")->Apply(Sizes);
BENCHMARK(Parse)->Name("load/parse")->Apply(Sizes);
BENCHMARK(Split)->Name("load/split")->Apply(Sizes);
BENCHMARK(LoadByHand)->Name("load/by_hand")->Apply(Sizes);
BENCHMARK(SqliteRows)->Name("load/sqlite_rows")->Apply(Sizes);
BENCHMARK(SqliteTable)->Name("load/sqlite_table")->Apply(Sizes);
BENCHMARK(Write)->Name("write/library")->Apply(Sizes);
BENCHMARK(WriteOnce)->Name("write/bare")->Apply(Sizes);
BENCHMARK(WriteCopied)->Name("write/copied")->Apply(Sizes);
BENCHMARK(Burst)->Name("burst/library")->UseRealTime();
BENCHMARK(BurstBare)->Name("burst/bare")->UseRealTime();

}  // namespace
}  // namespace lanvoss::bench
