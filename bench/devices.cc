#include "devices.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "backends/posix/posix_system.h"
#include "registry/cache_file.h"

namespace lanvoss::bench {

Device DeviceOf(std::size_t number) {
  constexpr std::uint32_t kScatter = 2'654'435'761;  // odd, so that no two numbers meet
  const auto low = static_cast<std::uint32_t>(number);
  char id[] = "WiFiDirect#02:00:00:00:00:00";
  std::snprintf(id, sizeof id, "WiFiDirect#02:00:%02x:%02x:%02x:%02x", low >> 24, low >> 16 & 0xFF,
                low >> 8 & 0xFF, low & 0xFF);
  char name[] = "Cam-00000000";
  std::snprintf(name, sizeof name, "Cam-%08X", low * kScatter);
  return {id, name};
}

std::size_t BytesOf(const Device& device) {
  return device.id.size() + MacOf(device.id).size() + device.name.size();
}

const DeviceTable::Records& RecordsOf(std::size_t count) {
  static std::map<std::size_t, DeviceTable::Records> made;
  DeviceTable::Records& records = made[count];
  for (std::size_t number = records.size(); number < count; ++number) {
    const Device device = DeviceOf(number);
    records.try_emplace(
        records.end(), device.id,
        DeviceRecord{MacOf(device.id), device.name, platform::LocalTime{2024, 3, 1, 9, 5, 3, 40}});
  }
  return records;
}

const std::filesystem::path& CacheDirectoryOf(std::size_t count) {
  static std::map<std::size_t, std::filesystem::path> made;
  std::filesystem::path& directory = made[count];
  if (directory.empty()) {
    directory = WorkDirectory::Path() / std::to_string(count);
    std::filesystem::create_directory(directory);
    WriteCacheFile(*posix::CreateSystem(), directory.string() + kCacheFileName,
                   FormatCache(RecordsOf(count)));
  }
  return directory;
}

const std::filesystem::path& WorkDirectory::Path() {
  static const WorkDirectory directory;
  return directory.path_;
}

WorkDirectory::WorkDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "lanvoss-bench-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    std::abort();
  }
  path_ = name;
}

WorkDirectory::~WorkDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace lanvoss::bench
