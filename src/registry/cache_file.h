// The cache file: its place, its text form, and reading and writing it whole.
//
// One line a device, "number|id|mac|name|2024-03-01 09:05:03.040", ended by a line feed, without
// escaping. The number is only for people.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/system.h"
#include "registry/device_table.h"

namespace lanvoss {

// Appended to the host's directory, whatever that ends with.
inline constexpr char kCacheFileName[] = "//deviceinfo.bin";

struct CacheLine {
  std::string id;
  DeviceRecord record;
};

// None for a line of fewer than five fields. Parts of the time that do not parse are 0.
std::optional<CacheLine> ParseCacheLine(std::string_view line);

std::string FormatCache(const DeviceTable::Records& records);

// The file's bytes up to the first zero byte; empty when it cannot be opened for update.
std::string ReadCacheFile(platform::System& system, const std::string& path);

// Replaces the file's content; a file that cannot be opened is left alone.
void WriteCacheFile(platform::System& system, const std::string& path, const std::string& content);

}  // namespace lanvoss
