#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "clock.h"
#include "columns.h"
#include "commands/link.h"
#include "commands/table.h"
#include "screen.h"

namespace lanvoss::program {
namespace {

std::string LinesOf(const std::vector<std::string>& names) {
  std::string lines;
  for (const std::string& name : names) {
    lines += name + "\n";
  }
  return lines;
}

// A text of a device, on one line.
std::string Cell(std::string text) {
  std::ranges::replace(text, '\n', '?');
  return Printable(text);
}

// "07:52:45" of a local time.
std::string ClockText(std::int64_t timeUs) {
  constexpr std::size_t kBegin = 11;
  constexpr std::size_t kLength = 8;
  return FormatTime(timeUs).substr(kBegin, kLength);
}

// The devices that were reported, in the order of their first reports.
class LiveTable {
 public:
  void Take(const DeviceReport& report) {
    const std::lock_guard lock(mutex_);
    const std::int64_t now = LocalTimeUs();
    auto device = std::ranges::find(devices_, report.id, &Device::id);
    if (device == devices_.end()) {
      device = devices_.insert(device, {.id = report.id, .firstUs = now, .lastUs = now});
    }
    device->name = report.name;
    device->isGone = report.isGone;
    if (!report.isGone) {
      device->lastUs = now;
    }
  }

  std::size_t Size() const {
    const std::lock_guard lock(mutex_);
    return devices_.size();
  }

  std::string Text() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::vector<std::string>> rows = {{"NAME", "FIRST SEEN", "LAST SEEN", "STATE"}};
    for (const Device& device : devices_) {
      rows.push_back({Cell(device.name), ClockText(device.firstUs), ClockText(device.lastUs),
                      device.isGone ? "gone" : "in range"});
    }
    return devices_.empty() ? "" : TextTable(rows);
  }

 private:
  struct Device {
    std::string id;  // two devices may have one name
    std::string name = {};
    std::int64_t firstUs = 0;
    std::int64_t lastUs = 0;
    bool isGone = false;
  };

  mutable std::mutex mutex_;
  std::vector<Device> devices_;  // guarded by the mutex
};

// Until an interrupt, which is its normal end, or until the time is over.
Outcome WatchLive(Session& session) {
  constexpr std::chrono::seconds kErrorShownAfter(1);
  session.EndByInterrupt();
  LiveTable table;
  auto watch = session.Library().Watch([&](const DeviceReport& report) {
    table.Take(report);
    session.Change()->Wake();
  });
  const auto end = WakeUp::Clock::now() + SearchTimeoutOf(session.Line());
  while (!session.IsInterrupted() && WakeUp::Clock::now() < end) {
    const std::string error = watch->Error();
    session.ShowStatus("devices: " + std::to_string(table.Size()) + "; Ctrl-C ends" +
                       (error.empty() ? "" : "; the platform says " + Cell(error)) + "\n" +
                       table.Text());
    session.Change()->WaitUntil(std::min(end, WakeUp::Clock::now() + kErrorShownAfter));
  }
  watch.reset();
  session.ShowStatus("");
  return {.result = table.Text()};
}

}  // namespace

void AddWatchOptions(CLI::App& command, CommandLine& line) {
  const auto name = command.add_option("NAME", line.name, "The device to look for")->type_name("");
  AddTimeoutOption(command, line);
  command.add_flag("--keep", line.keep, "Continue until the device is gone again")->needs(name);
}

Outcome RunWatch(Session& session) {
  const CommandLine& line = session.Line();
  if (!line.name && !line.json && !line.quiet && session.Output().ShowsTables()) {
    return WatchLive(session);
  }
  const std::string name = line.name.value_or("");
  const lanvoss::Outcome outcome = session.Library().Search(
      name, SearchTimeoutOf(line), line.keep ? SearchUntil::kGone : SearchUntil::kFound);
  if (!outcome) {
    return ToOutcome(name, outcome);
  }
  return {.result = line.name ? name + "\n" : LinesOf(outcome.inRange),
          .facts = JsonObject().AddTexts("devices", outcome.inRange)};
}

}  // namespace lanvoss::program
