#include "watch_command.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "notice.h"
#include "request.h"

namespace lanvoss::program {
namespace {

// The library's log lines that tell how a watch goes.
constexpr std::string_view kPositionDigits = "0123456789-";
constexpr std::string_view kAdded = " WatchDeviceAdded:";  // behind the device's position
constexpr std::string_view kBeforeId = " id:";
constexpr std::string_view kFound = "(watch) DeviceWatcher ok Dev=";
constexpr std::string_view kEnded = "(watch) DeviceWatcher stopped.";
constexpr std::string_view kEndedWithout = "(watch) DeviceWatcher stopped. no Dev=";

// "3 WatchDeviceAdded:NAME id:ID" and "3-1 WatchDeviceAdded:NAME id:ID" name a device that the
// running pass has reported. Notifications of kind "watch" would not do: they also name what the
// cache remembers, and leave out what it knew already.
std::optional<std::string> ReportedName(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(kPositionDigits), line.size()));
  if (!line.starts_with(kAdded)) {
    return std::nullopt;
  }
  line.remove_prefix(kAdded.size());
  return std::string(line.substr(0, line.rfind(kBeforeId)));
}

// What the log has told of the watch. Heard on threads of the library's, read by the command.
class Sightings {
 public:
  void Hear(const std::string& line) {
    const std::lock_guard lock(mutex_);
    if (auto name = ReportedName(line); name && std::ranges::find(names_, *name) == names_.end()) {
      names_.push_back(std::move(*name));
    }
    found_ = found_ || line.starts_with(kFound);
    if (line == kEnded || line.starts_with(kEndedWithout)) {
      ended_ = true;
      change_.notify_all();
    }
  }

  void WaitForEnd(const std::stop_token& interrupted) {
    std::unique_lock lock(mutex_);
    while (!ended_ && !interrupted.stop_requested()) {
      change_.wait_for(lock, std::chrono::milliseconds(kNoticeMs));
    }
  }

  // In the order of their first report, each on a line of its own.
  std::string Names() {
    const std::lock_guard lock(mutex_);
    std::string lines;
    for (const std::string& name : names_) {
      lines += name + "\n";
    }
    return lines;
  }

  bool Found() {
    const std::lock_guard lock(mutex_);
    return found_;
  }

 private:
  std::mutex mutex_;  // guards everything below
  std::condition_variable change_;
  std::vector<std::string> names_;
  bool found_ = false;
  bool ended_ = false;
};

// The host's function has no argument to bring it, and may still be called late.
Sightings& TheSightings() {
  static Sightings sightings;
  return sightings;
}

}  // namespace

void HearWatch(std::string kind, std::string message) {
  if (kind == "info") {
    TheSightings().Hear(message);
  }
}

Outcome RunWatch(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted) {
  if (object.StartWatch(WatchRequest(line.name.value_or(""), line.keep)) != 0) {
    return {kExitPlatform, {}, "the platform did not start its device watcher"};
  }
  Sightings& sightings = TheSightings();
  sightings.WaitForEnd(interrupted);
  if (!line.name) {
    return {kExitOk, sightings.Names()};
  }
  return sightings.Found() ? Outcome{kExitOk, *line.name + "\n"}
                           : Outcome{kExitNotFound, {}, *line.name + " was not found"};
}

}  // namespace lanvoss::program
