#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "commands/table.h"
#include "registry/cache_file.h"
#include "registry/split_text.h"
#include "screen.h"
#include "system.h"

namespace lanvoss::program {
namespace {

constexpr std::size_t kColumns = 4;
using Row = std::array<std::string, kColumns>;

const Row kHeading = {"NAME", "LAST SEEN", "ADDRESS", "ID"};

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

Row RowOf(const CacheLine& device) {
  return {Printable(device.record.name), TimeText(device.record.seen), Printable(device.record.mac),
          Printable(device.id)};
}

std::string Table(const std::vector<Row>& rows) {
  std::array<std::size_t, kColumns> widths{};
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < kColumns; ++column) {
      widths[column] = std::max(widths[column], CharactersIn(row[column]));
    }
  }
  constexpr std::size_t kGap = 2;
  std::string table;
  for (const Row& row : rows) {
    for (std::size_t column = 0; column + 1 < kColumns; ++column) {
      table += row[column] + std::string(widths[column] - CharactersIn(row[column]) + kGap, ' ');
    }
    table += row.back() + "\n";
  }
  return table;
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
  std::vector<Row> rows = {kHeading};
  std::vector<JsonObject> devices;
  for (const CacheLine& device : ReadDevices(session.CacheFolder())) {
    rows.push_back(RowOf(device));
    devices.push_back(DeviceFacts(device));
  }
  const JsonObject facts = JsonObject().AddObjects("devices", devices);
  if (devices.empty()) {
    return {kExitNotFound, {}, "the cache has no devices", facts};
  }
  return {.result = Table(rows), .facts = facts};
}

}  // namespace lanvoss::program
