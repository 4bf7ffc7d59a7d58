#include "invariants.h"

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <string_view>

#include "base/limits.h"
#include "host_loop.h"
#include "registry/cache_file.h"
#include "registry/split_text.h"
#include "worst_case.h"

namespace lanvoss::search {
namespace {

// The beginning of the line about a new link.
constexpr char kLinkUpText[] = "(watch) Devices connected on L2 layer";

// The platform looks for a device that is not there for this long.
constexpr std::int64_t kNobodyAnswersMs = 500;
constexpr std::int64_t kOneOpenMs = kLongestLatencyMs + kNobodyAnswersMs;

constexpr std::int64_t kConnectMs = worst_case::ConnectMs(kLongestLatencyMs, kOneOpenMs);
constexpr std::int64_t kAttemptMs =
    kConnectMs + worst_case::kStartMs + worst_case::kDoneMs + worst_case::kStopMs;

bool IsSide(std::string_view text, const std::optional<std::u16string>& address) {
  return address && text == platform::Utf16ToUtf8(*address);
}

// The stamped lines of standard output, without their stamps. A bare line may end in a blank, which
// is then before the next stamp.
Lines StampedLines(const std::string& printed) {
  static const std::regex stamp(R"( ?\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\] (.*))");
  Lines lines;
  std::smatch match;
  for (std::size_t at = 0; at < printed.size();) {
    const std::size_t end = printed.find('\n', at);
    const std::string line = printed.substr(at, end - at);
    if (std::regex_match(line, match, stamp)) {
      lines.push_back(match[1]);
    }
    at = end == std::string::npos ? printed.size() : end + 1;
  }
  return lines;
}

std::size_t CountLines(const Lines& log, std::string_view start) {
  return static_cast<std::size_t>(
      std::count_if(log.begin(), log.end(),
                    [start](const std::string& line) { return line.starts_with(start); }));
}

}  // namespace

std::int64_t LongestMs(const Step& step, const TestCase& testCase) {
  const std::int64_t hanging = Hangs(testCase) ? kScriptsEndMs : 0;
  switch (step.operation) {
    case Operation::kStartWatch:
      return worst_case::kStartMs;
    case Operation::kStopWatch:
      return worst_case::kStopMs;
    case Operation::kGetDeviceIp:
      return std::strtoll(step.argument.c_str(), nullptr, 10) + kAttemptMs + hanging;
    case Operation::kDisConnect:
      return worst_case::kCloseMs;
    case Operation::kPingCheck:
      return worst_case::kProbeMs + kAttemptMs + hanging;
    case Operation::kAbortConnect:
    case Operation::kUnpair:
      return 0;
  }
  return 0;
}

std::int64_t LongestEndMs(const TestCase& testCase) {
  return worst_case::EndMs(std::max<std::int64_t>(kLongestLatencyMs, kOneOpenMs)) +
         (Hangs(testCase) ? kScriptsEndMs : 0);
}

std::string CheckDuration(const std::string& what, std::int64_t tookMs, std::int64_t allowedMs) {
  return tookMs <= allowedMs ? std::string()
                             : what + " took " + std::to_string(tookMs) + " ms instead of " +
                                   std::to_string(allowedMs) + " at most";
}

std::string CheckWait(const Step& step, const std::string& address, std::int64_t tookMs,
                      std::int64_t excusedMs) {
  const bool waitedOut = step.operation == Operation::kGetDeviceIp &&
                         step.argument.find('\n') == std::string::npos && tookMs >= kDoneWaitMs &&
                         tookMs - excusedMs < 2 * kDoneWaitMs;
  return waitedOut && excusedMs == 0 && !address.empty()
             ? Describe(step) + " waited out its time and was not notified of " + address
             : std::string();
}

std::string CheckAddress(const std::string& address, const std::vector<simulated::Peer>& opened) {
  const std::size_t comma = address.find(',');
  const std::string local = address.substr(0, comma);
  const std::string remote = comma == std::string::npos ? "" : address.substr(comma + 1);
  const bool isKnown =
      address.empty() || std::any_of(opened.begin(), opened.end(), [&](const auto& peer) {
        // The local side is empty where the platform did not give it.
        const auto pairs = EndpointPairsOf(peer);
        return !pairs.empty() && (local.empty() || IsSide(local, pairs.front().local)) &&
               IsSide(remote, pairs.front().remote);
      });
  return isKnown ? std::string() : "no link was opened that has the addresses " + address;
}

std::string CheckConnected(const std::string& info, bool& isDown) {
  if (info.starts_with(kLinkUpText)) {
    isDown = false;
  } else if (info == "(watch) Connection status changed: Disconnected") {
    isDown = true;
  }
  return isDown && info.find(" is Connected,return ip=") != std::string::npos
             ? "called connected after the link went down: " + info
             : std::string();
}

bool EndsWaits(const std::string& info) {
  return info.starts_with(kLinkUpText) || info == "(watch) wfdDevice is null, return" ||
         info == "(watch) Stop Watcher done" ||
         info.starts_with("(watch) DeviceWatcher stopped. no Dev=");
}

bool BeginsWait(const std::string& info) { return info == "(watch) Start Watcher done"; }

std::string CheckRelease(std::int64_t waitedMs, std::int64_t untilSignalMs) {
  const bool timedOut = untilSignalMs >= kDoneWaitMs;
  return timedOut || waitedMs == untilSignalMs
             ? std::string()
             : "a wait that was to end after " + std::to_string(untilSignalMs) + " ms took " +
                   std::to_string(waitedMs);
}

std::string CheckOutput(const std::string& printed, Lines infos, bool inOrder) {
  Lines lines = StampedLines(printed);
  if (!inOrder) {
    std::sort(lines.begin(), lines.end());
    std::sort(infos.begin(), infos.end());
  }
  const auto [line, info] = std::mismatch(lines.begin(), lines.end(), infos.begin(), infos.end());
  if (line == lines.end() && info == infos.end()) {
    return {};
  }
  return "printed \"" + (line == lines.end() ? std::string("nothing more") : *line) +
         "\" but notified \"" + (info == infos.end() ? std::string("nothing more") : *info) + "\"";
}

std::string CheckLine(const std::string& info) {
  static const std::regex link(
      R"(.*,time:(-?\d+)ms\((\d+)\),watch:(-?\d+)ms\((\d+)\),fromid:(-?\d+)ms\((\d+)\) IPAddress: .*)");
  // A device is found after its attempt has begun, whatever the result is.
  if (info.find(",watch:-") != std::string::npos) {
    return "found before it was looked for: " + info;
  }
  std::smatch match;
  if (!std::regex_match(info, match, link)) {
    return {};
  }
  const auto number = [&match](std::size_t group) { return std::stoll(match[group]); };
  if (number(1) != number(3) + number(5)) {
    return "the steps do not make up the whole: " + info;
  }
  return number(1) <= number(2) ? std::string() : "longer than the longest: " + info;
}

std::string CheckCacheSoFar(const std::string& file,
                            const std::map<std::string, std::string>& devices) {
  for (const std::string_view text : SplitText(file, "\n")) {
    if (const auto line = ParseCacheLine(text); !line || !devices.contains(line->id)) {
      return "a line of the cache is no device that was reported: " + std::string(text);
    }
  }
  return {};
}

std::string CheckCache(const std::string& file, const std::map<std::string, std::string>& devices) {
  std::map<std::string, std::string> held;
  for (const std::string_view text : SplitText(file, "\n")) {
    const auto line = ParseCacheLine(text);
    if (!line) {
      return "a line of the cache does not parse: " + std::string(text);
    }
    held.emplace(line->id, line->record.name);
  }
  for (const auto& [id, name] : devices) {
    // A separator in a name is not protected: the line has the text before it.
    if (const auto found = held.find(id);
        found == held.end() || found->second != name.substr(0, name.find('|'))) {
      return "the cache does not hold " + name + " for " + id;
    }
  }
  return held.size() == devices.size() ? std::string() : "the cache holds devices nobody reported";
}

std::string ReasonOfFailure(const Lines& log, std::int64_t tookMs) {
  constexpr char kHostMeanwhile[] = "the host disconnected, or stopped the watcher, meanwhile";
  if (HasLine(log, "abort DisConnect:1")) {
    return "the end of a held link was reported and read as giving up";
  }
  if (HasLine(log, "abort DisConnect:0")) {
    return "the attempt was too old to open";
  }
  if (HasLine(log, "ConnDevice Err:")) {
    return "the connection ended in a platform error";
  }
  if (HasLine(log, "bDisConnect = 1")) {
    return "the find was made after a link had been reported down";
  }
  if (HasLine(log, "Start Watcher Err:")) {
    return "the watcher had not stopped completely";
  }
  if (HasLine(log, "Re FromIdAsync:5")) {
    return "every open request gave none";
  }
  if (tookMs < kDoneWaitMs && HasLine(log, "WatchDeviceAdded: id:")) {
    return "the device was reported without its name";
  }
  if (HasLine(log, "DoDisConnect ...")) {
    return kHostMeanwhile;
  }
  if (HasLine(log, "wfdDevice is null, return")) {
    return "an attempt from before ended and woke the request";
  }
  if (tookMs < kDoneWaitMs && HasLine(log, "(watch) Stop Watcher...")) {
    return kHostMeanwhile;
  }
  if (!HasLine(log, "watch start...")) {
    return "the running pass had reported the device before";
  }
  return {};
}

std::string CheckCounts(const Lines& log, const Counts& counts, bool failed) {
  const auto check = [failed](const char* what, std::size_t calls, std::size_t logged) {
    return calls == logged || (failed && logged < calls)
               ? std::string()
               : std::to_string(calls) + " times " + what + ", but the log has " +
                     std::to_string(logged);
  };
  const std::size_t stops =
      CountLines(log, "(watch) DeviceWatcher ok Dev=") +
      CountLines(log, "(watch) DeviceWatcher enumeration completed") +
      CountLines(log, kLinkUpText) + CountLines(log, "(watch) wfdDevice is null, return") +
      CountLines(log, "(watch) stop watch ok") + CountLines(log, "(watch) stop watch no") +
      CountLines(log, "(watch) Error StopWatch: ") + CountLines(log, "(watch) Start Watcher Err:");
  for (const std::string& wrong :
       {check("stopped the watcher", counts.watcherStops, stops),
        check("asked to open", counts.openRequests, CountLines(log, "(watch) FromIdAsync done")),
        check("paired", counts.pairings, CountLines(log, "PairAsync... GoIntent:")),
        check("unsubscribed", counts.revocations, counts.subscriptions)}) {
    if (!wrong.empty()) {
      return wrong;
    }
  }
  return {};
}

}  // namespace lanvoss::search
