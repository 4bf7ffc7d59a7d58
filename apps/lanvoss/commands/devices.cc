#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "columns.h"
#include "commands/table.h"
#include "registry/cache_file.h"
#include "registry/split_text.h"
#include "screen.h"

namespace lanvoss::program {
namespace {

// The lines of the cache. Lines that the library cannot read are left out.
std::vector<CacheLine> ReadDevices(const std::string& directory) {
  const std::string path = (directory.empty() ? "." : directory) + kCacheFileName;
  std::vector<CacheLine> devices;
  // Not with the library's own function: that would stop another process from writing.
  std::ifstream file(path, std::ios::binary);
  std::string content;
  std::getline(file, content, '\0');
  for (const std::string_view text : SplitText(content, "\n")) {
    if (auto line = ParseCacheLine(text)) {
      devices.push_back(std::move(*line));
    }
  }
  std::ranges::stable_sort(devices, {}, [](const CacheLine& line) { return line.record.name; });
  return devices;
}

std::string TimeText(const platform::LocalTime& time) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month,
                time.day, time.hour, time.minute, time.second);
  return text.data();
}

JsonObject DeviceFacts(const CacheLine& device) {
  return JsonObject()
      .AddText("name", device.record.name)
      .AddText("seen", TimeText(device.record.seen))
      .AddText("address", device.record.mac)
      .AddText("id", device.id);
}

}  // namespace

// Reads the cache and changes nothing. Looks for no device.
Outcome RunDevices(Session& session) {
  std::vector<std::vector<std::string>> rows = {{"NAME", "LAST SEEN", "ADDRESS", "ID"}};
  std::vector<JsonObject> devices;
  for (const CacheLine& device : ReadDevices(session.CacheFolder())) {
    rows.push_back({Printable(device.record.name), TimeText(device.record.seen),
                    Printable(device.record.mac), Printable(device.id)});
    devices.push_back(DeviceFacts(device));
  }
  const JsonObject facts = JsonObject().AddObjects("devices", devices);
  if (devices.empty()) {
    return {kExitNotFound, {}, "the cache has no devices", facts};
  }
  return {.result = TextTable(rows), .facts = facts};
}

}  // namespace lanvoss::program
