// Devices in numbers: as records, and as a cache file.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "registry/device_table.h"

namespace lanvoss::bench {

struct Device {
  std::string id;
  std::string name;
};

// Different ids, and names in no order that the ids have.
Device DeviceOf(std::size_t number);

// Made once and kept.
const DeviceTable::Records& RecordsOf(std::size_t count);
// The path of the cache file with this number of devices, in its own directory.
const std::filesystem::path& CacheDirectoryOf(std::size_t count);

std::size_t BytesOf(const Device& device);

// A directory that is removed with the process.
class WorkDirectory {
 public:
  static const std::filesystem::path& Path();
  ~WorkDirectory();
  WorkDirectory(const WorkDirectory&) = delete;
  WorkDirectory& operator=(const WorkDirectory&) = delete;

 private:
  WorkDirectory();

  std::filesystem::path path_;
};

}  // namespace lanvoss::bench
