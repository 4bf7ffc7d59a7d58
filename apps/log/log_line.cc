#include "log/log_line.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <system_error>
#include <utility>

namespace lanvoss::log {
namespace {

using enum LogEvent;
using enum Part;

bool Always(const LogLine&) { return true; }

bool IsNotPaired(const LogLine& line) {
  return line.text != "Paired" && line.text != "AlreadyPaired";
}

bool IsDisconnected(const LogLine& line) { return line.text == "Disconnected"; }

bool IsNotClosed(const LogLine& line) { return line.text != "ok"; }

bool HasNoReplies(const LogLine& line) { return line.number == 0; }

void NotePass(OperationStatus& status, const LogLine&) { ++status.passes; }

void NoteFind(OperationStatus& status, const LogLine&) { status.isFound = true; }

void NoteEndOfWatch(OperationStatus& status, const LogLine&) { status.isWatchOver = true; }

void NotePairing(OperationStatus& status, const LogLine&) { status.isPairing = true; }

void NotePairingStatus(OperationStatus& status, const LogLine& line) {
  status.isPairing = false;
  status.pairingStatus = line.text;
}

void NoteOpen(OperationStatus& status, const LogLine&) { ++status.opens; }

void NoteError(OperationStatus& status, const LogLine& line) { status.error = line.text; }

void NoteReplies(OperationStatus& status, const LogLine& line) { status.replies = line.number; }

void NoteRecovery(OperationStatus& status, const LogLine&) { status.isRecovery = true; }

// The first match counts.
// clang-format off
constexpr LogLineKind kKinds[] = {
    {kWatcher, kOther, "{number} Device:{name} id:{id}", "{name} remembered from the cache, {id}"},
    {kWatcher, kReported, "{number} WatchDeviceAdded:{name} id:{id}", "{name} reported, {id}",
     {.mark = "{name}", .byPlatform = true}},
    {kWatcher, kReported, "{}-{number} WatchDeviceAdded:{name} id:{id}", "{name} reported, {id}",
     {.mark = "{name}", .byPlatform = true}},
    {kHost, kWatchBegins, "(watch) Start Watcher...for ", "looks for every device",
     {.phase = "looking for devices"}},
    {kHost, kWatchBegins, "(watch) Start Watcher...for", "looks for every device",
     {.phase = "looking for devices"}},  // where the blank at the end of the line was cut off
    {kHost, kWatchBegins, "(watch) Start Watcher...for {name}", "looks for {name}",
     {.phase = "looking for {name}"}},
    {kHost, kWatchBegun, "(watch) Start Watcher done", "the watcher runs"},
    {kWatcher, kWatchRefused, "(watch) Start Watcher Err:{text}",
     "the platform refuses its watcher: {text}",
     {.mark = "refused", .isTrouble = Always, .change = NoteError}},
    {kWatcher, kPassStarting, "watch start...", "a pass starts", {.change = NotePass}},
    {kWatcher, kOther, "watch start ok.do:{number} status:{text} dt:{ms}",
     "the pass runs: {text}, tries: {number}"},
    {kWatcher, kOther, "watch start.try:{number} status:{text} dt:{ms}",
     "the pass does not run: {text}, try {number}",
     {.mark = "does not start", .isTrouble = Always}},
    {kWatcher, kOther, "(watch) OnDeviceUpdated name={name} id={id}", "{name} updated, {id}",
     {.byPlatform = true}},
    {kWatcher, kOther, "(watch) OnDeviceRemoved name={name} id={id}", "{name} gone, {id}",
     {.mark = "{name} gone", .byPlatform = true}},
    {kWatcher, kFound,
     "(watch) DeviceWatcher ok Dev={name} watch:{ms}ms({}) bConnectting = {} bDisConnect = {}",
     "{name} found after {ms} ms",
     {.mark = "{name} found", .byPlatform = true, .phase = "found {name}", .change = NoteFind}},
    {kWatcher, kOther, "(watch) DeviceWatcher enumeration completed",
     "the pass has reported all it sees", {.byPlatform = true}},
    {kWatcher, kWatchesAgain, "(watch) DeviceWatcher stopped,re watch",
     "the pass has stopped, another follows", {.byPlatform = true}},
    {kWatcher, kWatchEnded, "(watch) DeviceWatcher stopped.", "the pass has stopped",
     {.byPlatform = true, .change = NoteEndOfWatch}},
    {kWatcher, kWatchedGone,
     "(watch) DeviceWatcher stopped. no Dev={name} nowatch:{ms}ms({}) bConnectting = {}"
     " bDisConnect = {}", "{name} is gone, seen last after {ms} ms",
     {.mark = "{name} gone", .isTrouble = Always, .byPlatform = true, .change = NoteEndOfWatch}},
    {kHost, kStopBegins, "(watch) Stop Watcher...", "stops the watcher"},
    {kHost, kStopDone, "(watch) Stop Watcher done", "has stopped the watcher"},
    {kHost, kStopFailed, "(watch) Stop Watcher Err", "could not stop the watcher",
     {.mark = "stop failed", .isTrouble = Always}},
    {kHost, kOther, "(watch) stop watch ...", "asks the pass to stop"},
    {kHost, kOther, "(watch) stop watch ok.do:{number} status:{text} dt:{ms}",
     "the pass has stopped: {text}, tries: {number}"},
    {kHost, kOther, "(watch) stop watch no.try:{number} status:{text} dt:{ms}",
     "the pass does not stop: {text}, try {number}",
     {.mark = "does not stop", .isTrouble = Always}},
    {kHost, kOther, "(watch) Error StopWatch: {text}. try:{number}",
     "the platform refuses to stop: {text}", {.mark = "stop refused", .isTrouble = Always}},
    {kHost, kOther, "(watch) Dev name is null,return ip=''", "a request without a name",
     {.mark = "no name", .isTrouble = Always}},
    {kHost, kGapWait, "(watch) Con Dev name={name},Sleep={ms}ms",
     "{name}: waits {ms} ms since the last disconnect",
     {.phase = "keeping the gap from the last disconnect"}},
    {kHost, kAlreadyConnected, "(watch) Dev {name} is Connected,return ip={local},{remote}",
     "{name} is connected already: {local} to {remote}"},
    {kHost, kConnectsById, "(watch) Connect Dev for id,name={name} id={id}",
     "connects {name} at once, {id}"},
    {kHost, kConnectsByWatch, "(watch) Connect Dev for watch ... {name}",
     "{name} is not known and looked for"},
    {kHost, kRequestFailed,
     "(watch) Devices connected failed, connecting to name({name}),time:{ms}ms,watch:{}ms({}),"
     "fromid:{}ms({})", "no link to {name} after {ms} ms", {.isTrouble = Always}},
    {kHost, kRequestCancelled, "(watch) Connect Err", "the platform cancelled the request",
     {.mark = "cancelled", .isTrouble = Always}},
    {kConnection, kAttemptBegins, "(watch) ConnDevice... name={name} id={id}",
     "connects {name}, {id}", {.change = NoteFind}},
    {kConnection, kUnpairing, "(watch) UnpairAsync ...", "unpairs", {.phase = "unpairing"}},
    {kConnection, kPairingBegins, "(watch) RequestPairDeviceAsync ...", "looks whether to pair",
     {.phase = "pairing"}},
    {kConnection, kCeremonyBegins, "PairAsync... GoIntent:{}", "pairs", {.change = NotePairing}},
    {kConnection, kOther, "PairAsync done dt:{ms}ms", "the pairing took {ms} ms"},
    {kConnection, kPairingStatus, "PairAsync Status: {text}", "pairing: {text}",
     {.isTrouble = IsNotPaired, .change = NotePairingStatus}},
    {kConnection, kPairingEnded, "(watch) RequestPairDeviceAsync done", "goes on to open the link"},
    {kConnection, kOpenBegins, "(watch) FromIdAsync ...", "opens the link",
     {.phase = "opening the link"}},
    {kConnection, kOpenBeginsAfterClose, "(watch) DisConnect, watch FromIdAsync ...",
     "opens the link again", {.phase = "opening the link"}},
    {kConnection, kOpenDone, "(watch) FromIdAsync done dt:{ms}ms", "the open request took {ms} ms",
     {.change = NoteOpen}},
    {kConnection, kOpenCancelled, "(watch) FromIdAsync was canceled by user",
     "the platform cancelled the open request", {.isTrouble = Always}},
    {kConnection, kAttemptGivenUp,
     "(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:{} dt:{ms}ms",
     "the attempt is given up after {ms} ms", {.mark = "given up", .isTrouble = Always}},
    {kConnection, kOpenGaveNone, "(watch) wfdDevice is null,Re FromIdAsync:{number} {name}",
     "open request {number} gave no device", {.isTrouble = Always}},
    {kConnection, kLinkUp,
     "(watch) Devices connected on L2 layer, connecting to name({name}),time:{ms}ms({}),"
     "watch:{}ms({}),fromid:{}ms({}) IPAddress: loc:{local} remote:{remote}",
     "link to {name} is up: {local} to {remote}", {.phase = "connected"}},
    {kConnection, kNoLink, "(watch) wfdDevice is null, return", "the attempt ends without a link",
     {.isTrouble = Always}},
    {kConnection, kAttemptError, "(watch) ConnDevice Err:{text}", "the platform failed: {text}",
     {.mark = "error", .isTrouble = Always, .change = NoteError}},
    {kLink, kStatusChanged, "(watch) Connection status changed: {text}",
     "the platform reports the link: {text}",
     {.mark = "{text}", .isTrouble = IsDisconnected, .byPlatform = true}},
    {kConnection, kCloseBegins, "(watch) DoDisConnect ...", "closes the link",
     {.phase = "closing the link"}},
    {kConnection, kOther, "(watch) DoDisConnect timer out,try:{number}",
     "no report of the close, try {number}", {.isTrouble = Always}},
    {kConnection, kOther, "(watch) DoDisConnect OK, do :{number}",
     "the link is closed, tries: {number}"},
    {kConnection, kOther, "(watch) DoDisConnect Err:{text}", "the platform failed to close: {text}",
     {.mark = "close failed", .isTrouble = Always}},
    {kConnection, kCloseEnded, "(watch) DoDisConnect done,do:{text}", "has closed: {text}",
     {.isTrouble = IsNotClosed}},
    {kHost, kOther, "(watch) UnpairAsync OK", "asks to unpair", {.mark = "unpairs"}},
    {kHost, kOther, "(watch) Watch again,try...", "cannot unpair what was not reported",
     {.mark = "unknown device", .isTrouble = Always}},
    {kCheck, kProbing, "(watch) ping ...", "probes the link", {.phase = "probing the link"}},
    {kCheck, kProbed, "(watch) ping done ret:{number} dt:{ms}ms DisConnect:{}",
     "replies: {number}, in {ms} ms", {.isTrouble = HasNoReplies, .change = NoteReplies}},
    {kCheck, kNotRecovered, "(watch) Ping Failed,Re Pair Failed!{name}",
     "{name} is silent, and was recovered once",
     {.mark = "{name} not recovered", .isTrouble = Always}},
    {kCheck, kRecovers, "(watch) Ping Failed,Unpair,Re Pair... {name}",
     "{name} is silent: recovers it",
     {.isTrouble = Always, .phase = "recovering the link", .change = NoteRecovery}},
    {kCheck, kRecoversByWatch, "(watch) Ping Failed,Watch,Unpair,Re Pair... {name}",
     "{name} is silent: looks for it to recover it",
     {.isTrouble = Always, .phase = "recovering the link", .change = NoteRecovery}},
    // Only on standard output; the host is not notified of them.
    {kHost, kOther, "(watch) stop watch timer out", "the stop of the pass is not reported",
     {.isTrouble = Always}},
    {kHost, kOther, "watch timer out", "the time of the wait is over", {.isTrouble = Always}},
    {kHost, kOther, "unpair timer out", "the end of the unpairing is not reported",
     {.isTrouble = Always}},
    {kConnection, kOther, "(watch) RequestPairDeviceAsync ret", "the pairing failed",
     {.isTrouble = Always}},
    {kConnection, kOther, "OnPairingRequested:{number}", "the ceremony asks"},
};
// clang-format on

// What a host's logger writes before a message is shorter.
constexpr std::size_t kLongestPrefix = 512;

constexpr LogLineKind kUnknown = {kHost, kOther, "", "{text}"};

// Moves a 32-bit number out of the beginning of `rest`.
std::optional<std::int32_t> TakeNumber(std::string_view& rest) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (error != std::errc()) {
    return std::nullopt;
  }
  rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  return number;
}

// The text up to the last `literal`. Devices choose their names, so the text may contain `literal`
// too. To the end when `literal` is empty.
std::optional<std::string> TakeText(std::string_view& rest, std::string_view literal) {
  const auto end = rest.rfind(literal);
  if (end == std::string_view::npos) {
    return std::nullopt;
  }
  std::string text(rest.substr(0, end));
  rest.remove_prefix(end);
  return text;
}

// Moves one field from the front of `rest` into `line`. False when it is not there.
bool TakeField(std::string_view field, std::string_view literal, std::string_view& rest,
               LogLine& line) {
  if (field.empty() || field == "number" || field == "ms") {
    const auto number = TakeNumber(rest);
    if (!field.empty()) {
      (field == "ms" ? line.ms : line.number) = number;
    }
    return number.has_value();
  }
  auto text = TakeText(rest, literal);
  if (!text) {
    return false;
  }
  (field == "name"    ? line.name
   : field == "id"    ? line.id
   : field == "local" ? line.local
   : field == "text"  ? line.text
                      : line.remote) = std::move(*text);
  return true;
}

// Moves the text up to the next field, or to the end, out of the pattern.
std::string_view TakeLiteral(std::string_view& pattern) {
  const std::string_view literal = pattern.substr(0, pattern.find('{'));
  pattern.remove_prefix(literal.size());
  return literal;
}

std::optional<LogLine> Match(const LogLineKind& kind, std::string_view rest) {
  LogLine line{.kind = &kind, .event = kind.event};
  std::string_view ahead = kind.pattern;
  std::string_view literal = TakeLiteral(ahead);
  while (rest.starts_with(literal)) {
    rest.remove_prefix(literal.size());
    if (ahead.empty()) {
      return rest.empty() ? std::optional(std::move(line)) : std::nullopt;
    }
    const auto end = ahead.find('}');
    const std::string_view field = ahead.substr(1, end - 1);
    ahead.remove_prefix(end + 1);
    literal = TakeLiteral(ahead);
    if (!TakeField(field, literal, rest, line)) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

std::optional<LogLine> MatchAny(std::string_view message) {
  for (const LogLineKind& kind : kKinds) {
    if (auto line = Match(kind, message)) {
      return line;
    }
  }
  return std::nullopt;
}

// Whether a message can begin with it.
bool IsFirst(char character) {
  return std::ranges::any_of(kKinds, [&](const LogLineKind& kind) {
    const char first = kind.pattern.front();
    return first == '{' ? std::isdigit(static_cast<unsigned char>(character)) != 0
                        : first == character;
  });
}

bool IsOfWord(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

std::string FieldOf(std::string_view name, const LogLine& line) {
  const auto text = [](const std::optional<std::int32_t>& number) {
    return number ? std::to_string(*number) : "?";
  };
  return name == "name"     ? line.name
         : name == "id"     ? line.id
         : name == "text"   ? line.text
         : name == "local"  ? line.local
         : name == "remote" ? line.remote
         : name == "ms"     ? text(line.ms)
                            : text(line.number);
}

// `words` with the fields of `line` in their places.
std::string FillIn(std::string_view words, const LogLine& line) {
  std::string filled;
  for (auto open = words.find('{'); open != std::string_view::npos; open = words.find('{')) {
    const auto close = words.find('}', open);
    filled += words.substr(0, open);
    filled += FieldOf(words.substr(open + 1, close - open - 1), line);
    words.remove_prefix(close + 1);
  }
  return filled += words;
}

}  // namespace

// The first one counts: a device's name may contain what looks like another message.
std::optional<std::string_view> FindMessage(std::string_view line) {
  const std::size_t end = std::min(line.size(), kLongestPrefix);
  for (std::size_t at = 0; at < end; ++at) {
    const bool mayBegin = (at == 0 || !IsOfWord(line[at - 1])) && IsFirst(line[at]);
    if (mayBegin && MatchAny(line.substr(at))) {
      return line.substr(at);
    }
  }
  return std::nullopt;
}

LogLine ParseLogLine(const Notification& notification) {
  if (notification.kind == "info") {
    if (auto line = MatchAny(notification.message)) {
      return std::move(*line);
    }
  }
  return {.kind = &kUnknown, .event = kUnknown.event, .text = notification.message};
}

bool IsKnown(const LogLine& line) { return line.kind != &kUnknown; }

std::string WordsOf(const LogLine& line) { return FillIn(line.kind->words, line); }

std::string MarkOf(const LogLine& line) { return FillIn(line.kind->more.mark, line); }

bool IsTrouble(const LogLine& line) {
  return line.kind->more.isTrouble != nullptr && line.kind->more.isTrouble(line);
}

void Apply(const LogLine& line, OperationStatus& status) {
  if (line.kind->more.change != nullptr) {
    line.kind->more.change(status, line);
  }
  if (!line.kind->more.phase.empty()) {
    status.phase = FillIn(line.kind->more.phase, line);
  }
}

}  // namespace lanvoss::log
