// A cache file of any bytes, and devices with any texts reported after it: what the table holds
// then is written and loaded again. An input is the file. After it, each after a kReportMark, come
// reports of an id, a name and the bytes of a time stamp.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "registry/cache_file.h"
#include "registry/compare_seconds.h"
#include "registry/device_table.h"
#include "registry/split_text.h"
#include "require.h"

namespace {

using lanvoss::DeviceRecord;
using lanvoss::DeviceTable;
using Records = DeviceTable::Records;

constexpr char kReportMark = '\x1e';
constexpr char kPartMark = '\x1f';  // between the parts of a report

// As the watcher object loads its cache.
DeviceTable Load(const std::string& content) {
  DeviceTable table;
  for (const std::string_view text : lanvoss::SplitText(content, "\n")) {
    if (const auto line = lanvoss::ParseCacheLine(text)) {
      table.Load(line->id, line->record);
      Require(table.AllRecords().contains(line->id), "a loaded id has a record");
      Require(table.IdOf(line->record.name) != nullptr, "a loaded name has an id");
    }
  }
  return table;
}

// What comes before the mark. Leaves what follows it in `rest`.
std::string Take(std::string_view& rest, char mark) {
  const std::size_t end = std::min(rest.find(mark), rest.size());
  std::string taken(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return taken;
}

void Report(std::string_view report, Records& records) {
  const std::string id = Take(report, kPartMark);
  DeviceRecord& record = records[id];
  record = {lanvoss::MacOf(id), Take(report, kPartMark), {}};
  std::memcpy(&record.seen, report.data(), std::min(report.size(), sizeof record.seen));
}

bool HoldsAny(const std::string& characters, const std::string& id, const DeviceRecord& record) {
  const auto holds = [&](const std::string& text) {
    return text.find_first_of(characters) != std::string::npos;
  };
  return holds(id) || holds(record.mac) || holds(record.name);
}

// Whether a line of the file can hold all that is known of the device. Texts are not escaped, and
// the parts of a stamp have four digits, two, or three.
bool FitsIntoALine(const std::string& id, const DeviceRecord& record) {
  const lanvoss::platform::LocalTime& seen = record.seen;
  return !id.empty() && !record.name.empty() && !HoldsAny({'|', '\n', '\0'}, id, record) &&
         seen.year <= 9999 &&
         std::max({seen.month, seen.day, seen.hour, seen.minute, seen.second}) <= 99 &&
         seen.millisecond <= 999;
}

bool Holds(const Records& records, const std::string& id, const DeviceRecord& record) {
  const auto found = records.find(id);
  return found != records.end() && found->second.mac == record.mac &&
         found->second.name == record.name && found->second.seen == record.seen;
}

void CheckNames(const DeviceTable& table) {
  for (const auto& [id, record] : table.AllRecords()) {
    const std::string* latestId = table.IdOf(record.name);
    Require(latestId != nullptr, "a name means a device");
    const auto latest = table.AllRecords().find(*latestId);
    Require(latest != table.AllRecords().end() && latest->second.name == record.name,
            "a name means a device of that name");
    Require(lanvoss::CompareSeconds(record.seen, latest->second.seen) <= 0,
            "a name means the latest of its devices");
  }
}

// A record that a line can hold is loaded as it was, and nothing else is loaded.
void CheckRecords(Records records) {
  std::erase_if(records, [](const auto& each) { return !FitsIntoALine(each.first, each.second); });
  const DeviceTable loaded = Load(lanvoss::FormatCache(records));
  Require(loaded.AllRecords().size() == records.size(), "as many devices come back");
  for (const auto& [id, record] : records) {
    Require(Holds(loaded.AllRecords(), id, record), "the record comes back");
  }
  CheckNames(loaded);
}

// A record that a line cannot hold spoils its own line alone. Only a line feed makes more lines of
// it, which may say anything about any device.
void CheckOthers(Records records) {
  std::erase_if(records, [](const auto& each) { return HoldsAny("\n", each.first, each.second); });
  const std::string content = lanvoss::FormatCache(records);
  Require(lanvoss::SplitText(content, "\n").size() == records.size(), "every record is one line");
  const Records loaded = Load(content).AllRecords();
  for (const auto& [id, record] : records) {
    Require(!FitsIntoALine(id, record) || Holds(loaded, id, record),
            "the record comes back in spite of the others");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(data, data + size);
  std::string_view rest = input;
  Records records = Load(Take(rest, kReportMark)).AllRecords();
  while (!rest.empty()) {
    Report(Take(rest, kReportMark), records);
  }
  CheckRecords(records);
  CheckOthers(records);
  return 0;
}
