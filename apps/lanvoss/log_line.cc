#include "log_line.h"

#include <charconv>
#include <system_error>

namespace lanvoss::program {
namespace {

struct Pattern {
  Step step;
  std::string_view text;  // with {fields}; {} is a number that nobody asks for
};

// The first that matches counts.
constexpr Pattern kPatterns[] = {
    {Step::kRemembered, "{number} Device:{name} id:{id}"},
    {Step::kReported, "{number} WatchDeviceAdded:{name} id:{id}"},
    {Step::kReported, "{}-{number} WatchDeviceAdded:{name} id:{id}"},
    {Step::kWatchBegins, "(watch) Start Watcher...for {name}"},
    {Step::kWatchBegun, "(watch) Start Watcher done"},
    {Step::kWatchRefused, "(watch) Start Watcher Err:{text}"},
    {Step::kPassStarting, "watch start..."},
    {Step::kPassStarted, "watch start ok.do:{number} status:{text} dt:{ms}"},
    {Step::kPassNotStarted, "watch start.try:{number} status:{text} dt:{ms}"},
    {Step::kUpdated, "(watch) OnDeviceUpdated name={name} id={id}"},
    {Step::kRemoved, "(watch) OnDeviceRemoved name={name} id={id}"},
    {Step::kFound,
     "(watch) DeviceWatcher ok Dev={name} watch:{ms}ms({}) bConnectting = {} bDisConnect = {}"},
    {Step::kEnumerated, "(watch) DeviceWatcher enumeration completed"},
    {Step::kWatchesAgain, "(watch) DeviceWatcher stopped,re watch"},
    {Step::kWatchEnded, "(watch) DeviceWatcher stopped."},
    {Step::kWatchedGone,
     "(watch) DeviceWatcher stopped. no Dev={name} nowatch:{ms}ms({}) bConnectting = {} "
     "bDisConnect = {}"},
    {Step::kStopBegins, "(watch) Stop Watcher..."},
    {Step::kStopDone, "(watch) Stop Watcher done"},
    {Step::kStopFailed, "(watch) Stop Watcher Err"},
    {Step::kPassStopping, "(watch) stop watch ..."},
    {Step::kPassStopped, "(watch) stop watch ok.do:{number} status:{text} dt:{ms}"},
    {Step::kPassNotStopped, "(watch) stop watch no.try:{number} status:{text} dt:{ms}"},
    {Step::kPassStopRefused, "(watch) Error StopWatch: {text}. try:{number}"},
    {Step::kNoName, "(watch) Dev name is null,return ip=''"},
    {Step::kGapWait, "(watch) Con Dev name={name},Sleep={ms}ms"},
    {Step::kAlreadyConnected, "(watch) Dev {name} is Connected,return ip={local},{remote}"},
    {Step::kConnectsById, "(watch) Connect Dev for id,name={name} id={id}"},
    {Step::kConnectsByWatch, "(watch) Connect Dev for watch ... {name}"},
    {Step::kRequestFailed,
     "(watch) Devices connected failed, connecting to name({name}),time:{ms}ms,watch:{}ms({}),"
     "fromid:{}ms({})"},
    {Step::kRequestCancelled, "(watch) Connect Err"},
    {Step::kAttemptBegins, "(watch) ConnDevice... name={name} id={id}"},
    {Step::kUnpairing, "(watch) UnpairAsync ..."},
    {Step::kPairingBegins, "(watch) RequestPairDeviceAsync ..."},
    {Step::kCeremonyBegins, "PairAsync... GoIntent:{}"},
    {Step::kCeremonyDone, "PairAsync done dt:{ms}ms"},
    {Step::kPairingStatus, "PairAsync Status: {text}"},
    {Step::kPairingEnded, "(watch) RequestPairDeviceAsync done"},
    {Step::kOpenBegins, "(watch) FromIdAsync ..."},
    {Step::kOpenBeginsAfterClose, "(watch) DisConnect, watch FromIdAsync ..."},
    {Step::kOpenDone, "(watch) FromIdAsync done dt:{ms}ms"},
    {Step::kOpenCancelled, "(watch) FromIdAsync was canceled by user"},
    {Step::kAttemptGivenUp,
     "(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:{} dt:{ms}ms"},
    {Step::kOpenGaveNone, "(watch) wfdDevice is null,Re FromIdAsync:{number} {name}"},
    {Step::kLinkUp,
     "(watch) Devices connected on L2 layer, connecting to name({name}),time:{ms}ms({}),"
     "watch:{}ms({}),fromid:{}ms({}) IPAddress: loc:{local} remote:{remote}"},
    {Step::kNoLink, "(watch) wfdDevice is null, return"},
    {Step::kAttemptError, "(watch) ConnDevice Err:{text}"},
    {Step::kStatusChanged, "(watch) Connection status changed: {text}"},
    {Step::kCloseBegins, "(watch) DoDisConnect ..."},
    {Step::kCloseTimedOut, "(watch) DoDisConnect timer out,try:{number}"},
    {Step::kClosed, "(watch) DoDisConnect OK, do :{number}"},
    {Step::kCloseError, "(watch) DoDisConnect Err:{text}"},
    {Step::kCloseEnded, "(watch) DoDisConnect done,do:{text}"},
    {Step::kUnpairRequested, "(watch) UnpairAsync OK"},
    {Step::kUnpairUnknown, "(watch) Watch again,try..."},
    {Step::kProbing, "(watch) ping ..."},
    {Step::kProbed, "(watch) ping done ret:{number} dt:{ms}ms DisConnect:{}"},
    {Step::kNotRecovered, "(watch) Ping Failed,Re Pair Failed!{name}"},
    {Step::kRecovers, "(watch) Ping Failed,Unpair,Re Pair... {name}"},
    {Step::kRecoversByWatch, "(watch) Ping Failed,Watch,Unpair,Re Pair... {name}"},
};

// A number of 32 bits at the front of `rest`, which is moved behind it.
std::optional<std::int32_t> TakeNumber(std::string_view& rest) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (error != std::errc()) {
    return std::nullopt;
  }
  rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  return number;
}

// The text up to the last `literal`, which may stand in the text too: devices choose their names.
// To the end when `literal` is empty.
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

// Moves the pattern's part up to its next field, or to its end, out of it.
std::string_view TakeLiteral(std::string_view& pattern) {
  const std::string_view literal = pattern.substr(0, pattern.find('{'));
  pattern.remove_prefix(literal.size());
  return literal;
}

std::optional<LogLine> Match(const Pattern& pattern, std::string_view rest) {
  LogLine line{.step = pattern.step};
  std::string_view ahead = pattern.text;
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

}  // namespace

LogLine Understand(std::string_view message) {
  for (const Pattern& pattern : kPatterns) {
    if (auto line = Match(pattern, message)) {
      return std::move(*line);
    }
  }
  return {};
}

}  // namespace lanvoss::program
