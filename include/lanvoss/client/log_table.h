/// @file
/// The table of all log lines of the library: the wording of each, and what it means.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lanvoss::log {

/// What a line reports.
enum class LogEvent {
  kOther,  // all the others
  // The watch.
  kWatchBegins,
  kWatchBegun,    // the platform runs its watcher
  kWatchRefused,  // the platform did not start its watcher
  kPassStarting,
  kReported,      // a device, by the running pass
  kGone,          // a device, as the platform reports it
  kFound,         // the device that was looked for
  kWatchesAgain,  // the pass has stopped, the next one begins
  kWatchEnded,    // the pass has stopped, and no other follows
  kWatchedGone,   // the same, since the found device was not seen again
  kStopBegins,    // the host or the end of a request stops the watcher
  kStopDone,
  kStopFailed,
  // Requests for an address.
  kGapWait,  // before the request
  kAlreadyConnected,
  kConnectsById,     // a direct request
  kConnectsByWatch,  // a direct request for a device that is not known
  kRequestFailed,
  kRequestCancelled,  // by the platform
  // A connection attempt.
  kAttemptBegins,
  kUnpairing,  // then it waits for the report of that
  kPairingBegins,
  kCeremonyBegins,  // the device is not paired yet
  kPairingStatus,
  kPairingEnded,
  kOpenBegins,
  kOpenBeginsAfterClose,  // the link held before has been closed
  kOpenDone,              // with or without a link
  kOpenGaveNone,
  kOpenCancelled,   // by the platform
  kAttemptGivenUp,  // no time is left, or the host gave up
  kLinkUp,
  kNoLink,
  kAttemptError,  // of the platform; a waiting request continues to wait
  // The link and the pairing.
  kStatusChanged,
  kCloseBegins,
  kCloseEnded,
  kUnknownDevice,  // cannot be unpaired, because the watcher has not reported it
  // The check of the link.
  kProbing,
  kProbed,
  kRecovers,
  kRecoversByWatch,  // the same for a device that the watcher has not reported
  kNotRecovered,     // because there was a recovery before
};

/// Which part of the work a line belongs to.
enum class Part { kHost, kWatcher, kConnection, kCheck, kLink };

struct LogLineKind;

/// A line, taken apart. Only the fields that it has are filled.
struct LogLine {
  const LogLineKind* kind = nullptr;  // never null in a line that was parsed
  LogEvent event = LogEvent::kOther;
  std::string name = {};  // of a device, as the device chose it
  std::string id = {};
  std::string text = {};
  std::string local = {};  // address
  std::string remote = {};
  std::optional<std::int32_t> number = {};
  std::optional<std::int32_t> ms = {};
  std::optional<std::int32_t> givenUp = {};  // 1: the attempt is given up
};

/// What only some kinds of lines have.
struct Traits {
  std::string_view mark = {};  // a short text for a mark in the picture; empty: no mark
  bool (*isTrouble)(const LogLine& line) = nullptr;  // none: never
  bool byPlatform = false;      // logged by an event handler, on a thread of the platform
  std::string_view phase = {};  // of the operation, from this line on

  constexpr Traits Mark(std::string_view text) const {
    Traits traits = *this;
    traits.mark = text;
    return traits;
  }
  constexpr Traits TroubleIf(bool (*is)(const LogLine& line)) const {
    Traits traits = *this;
    traits.isTrouble = is;
    return traits;
  }
  constexpr Traits Trouble() const {
    return TroubleIf([](const LogLine&) { return true; });
  }
  constexpr Traits ByPlatform() const {
    Traits traits = *this;
    traits.byPlatform = true;
    return traits;
  }
  constexpr Traits Phase(std::string_view text) const {
    Traits traits = *this;
    traits.phase = text;
    return traits;
  }
};

/// All that is known of a kind of line. Texts contain the line's {fields}; {} in a pattern is a
/// number that is not used.
struct LogLineKind {
  Part part;
  LogEvent event;
  std::string_view pattern;
  std::string_view words;  // for readers who do not know the log
  Traits traits = {};
};

inline bool IsPaired(const std::string& status) {
  return status == "Paired" || status == "AlreadyPaired";
}
inline bool IsNotPaired(const LogLine& line) { return !IsPaired(line.text); }
inline bool IsDisconnected(const LogLine& line) { return line.text == "Disconnected"; }
inline bool IsNotClosed(const LogLine& line) { return line.text != "ok"; }
inline bool HasNoReplies(const LogLine& line) { return line.number == 0; }

/// The first match counts.
// clang-format off
inline constexpr LogLineKind kLogLines[] = {
    {Part::kWatcher, LogEvent::kOther, "{number} Device:{name} id:{id}",
     "{name} remembered from the cache, {id}"},
    {Part::kWatcher, LogEvent::kReported, "{number} WatchDeviceAdded:{name} id:{id}",
     "{name} reported, {id}", Traits().Mark("{name}").ByPlatform()},
    {Part::kWatcher, LogEvent::kReported, "{}-{number} WatchDeviceAdded:{name} id:{id}",
     "{name} reported, {id}", Traits().Mark("{name}").ByPlatform()},
    {Part::kHost, LogEvent::kWatchBegins, "(watch) Start Watcher...for ", "looks for every device",
     Traits().Phase("looking for devices")},
    // Where the blank at the end of the line was cut off.
    {Part::kHost, LogEvent::kWatchBegins, "(watch) Start Watcher...for", "looks for every device",
     Traits().Phase("looking for devices")},
    {Part::kHost, LogEvent::kWatchBegins, "(watch) Start Watcher...for {name}", "looks for {name}",
     Traits().Phase("looking for {name}")},
    {Part::kHost, LogEvent::kWatchBegun, "(watch) Start Watcher done", "the watcher runs"},
    {Part::kWatcher, LogEvent::kWatchRefused, "(watch) Start Watcher Err:{text}",
     "the platform refuses its watcher: {text}", Traits().Mark("refused").Trouble()},
    {Part::kWatcher, LogEvent::kPassStarting, "watch start...", "a pass starts"},
    {Part::kWatcher, LogEvent::kOther, "watch start ok.do:{number} status:{text} dt:{ms}",
     "the pass runs: {text}, tries: {number}"},
    {Part::kWatcher, LogEvent::kOther, "watch start.try:{number} status:{text} dt:{ms}",
     "the pass does not run: {text}, try {number}", Traits().Mark("does not start").Trouble()},
    {Part::kWatcher, LogEvent::kOther, "(watch) OnDeviceUpdated name={name} id={id}",
     "{name} updated, {id}", Traits().ByPlatform()},
    {Part::kWatcher, LogEvent::kGone, "(watch) OnDeviceRemoved name={name} id={id}",
     "{name} gone, {id}", Traits().Mark("{name} gone").ByPlatform()},
    {Part::kWatcher, LogEvent::kFound,
     "(watch) DeviceWatcher ok Dev={name} watch:{ms}ms({}) bConnectting = {}"
     " bDisConnect = {givenUp}",
     "{name} found after {ms} ms",
     Traits().Mark("{name} found").ByPlatform().Phase("found {name}")},
    {Part::kWatcher, LogEvent::kOther, "(watch) DeviceWatcher enumeration completed",
     "the pass has reported all it sees", Traits().ByPlatform()},
    {Part::kWatcher, LogEvent::kWatchesAgain, "(watch) DeviceWatcher stopped,re watch",
     "the pass has stopped, another follows", Traits().ByPlatform()},
    {Part::kWatcher, LogEvent::kWatchEnded, "(watch) DeviceWatcher stopped.",
     "the pass has stopped", Traits().ByPlatform()},
    {Part::kWatcher, LogEvent::kWatchedGone,
     "(watch) DeviceWatcher stopped. no Dev={name} nowatch:{ms}ms({}) bConnectting = {}"
     " bDisConnect = {givenUp}",
     "{name} is gone, seen last after {ms} ms",
     Traits().Mark("{name} gone").Trouble().ByPlatform()},
    {Part::kHost, LogEvent::kStopBegins, "(watch) Stop Watcher...", "stops the watcher"},
    {Part::kHost, LogEvent::kStopDone, "(watch) Stop Watcher done", "has stopped the watcher"},
    {Part::kHost, LogEvent::kStopFailed, "(watch) Stop Watcher Err", "could not stop the watcher",
     Traits().Mark("stop failed").Trouble()},
    {Part::kHost, LogEvent::kOther, "(watch) stop watch ...", "asks the pass to stop"},
    {Part::kHost, LogEvent::kOther, "(watch) stop watch ok.do:{number} status:{text} dt:{ms}",
     "the pass has stopped: {text}, tries: {number}"},
    {Part::kHost, LogEvent::kOther, "(watch) stop watch no.try:{number} status:{text} dt:{ms}",
     "the pass does not stop: {text}, try {number}", Traits().Mark("does not stop").Trouble()},
    {Part::kHost, LogEvent::kOther, "(watch) Error StopWatch: {text}. try:{number}",
     "the platform refuses to stop: {text}", Traits().Mark("stop refused").Trouble()},
    {Part::kHost, LogEvent::kOther, "(watch) Dev name is null,return ip=''",
     "a request without a name", Traits().Mark("no name").Trouble()},
    {Part::kHost, LogEvent::kGapWait, "(watch) Con Dev name={name},Sleep={ms}ms",
     "{name}: waits {ms} ms since the last disconnect",
     Traits().Phase("keeping the gap from the last disconnect")},
    {Part::kHost, LogEvent::kAlreadyConnected,
     "(watch) Dev {name} is Connected,return ip={local},{remote}",
     "{name} is connected already: {local} to {remote}"},
    {Part::kHost, LogEvent::kConnectsById, "(watch) Connect Dev for id,name={name} id={id}",
     "connects {name} at once, {id}"},
    {Part::kHost, LogEvent::kConnectsByWatch, "(watch) Connect Dev for watch ... {name}",
     "{name} is not known and looked for"},
    {Part::kHost, LogEvent::kRequestFailed,
     "(watch) Devices connected failed, connecting to name({name}),time:{ms}ms,"
     "watch:{}ms({}),fromid:{}ms({})", "no link to {name} after {ms} ms", Traits().Trouble()},
    {Part::kHost, LogEvent::kRequestCancelled, "(watch) Connect Err",
     "the platform cancelled the request", Traits().Mark("cancelled").Trouble()},
    {Part::kConnection, LogEvent::kAttemptBegins, "(watch) ConnDevice... name={name} id={id}",
     "connects {name}, {id}"},
    {Part::kConnection, LogEvent::kUnpairing, "(watch) UnpairAsync ...", "unpairs",
     Traits().Phase("unpairing")},
    {Part::kConnection, LogEvent::kPairingBegins, "(watch) RequestPairDeviceAsync ...",
     "looks whether to pair", Traits().Phase("pairing")},
    {Part::kConnection, LogEvent::kCeremonyBegins, "PairAsync... GoIntent:{}", "pairs"},
    {Part::kConnection, LogEvent::kOther, "PairAsync done dt:{ms}ms", "the pairing took {ms} ms"},
    {Part::kConnection, LogEvent::kPairingStatus, "PairAsync Status: {text}", "pairing: {text}",
     Traits().TroubleIf(IsNotPaired)},
    {Part::kConnection, LogEvent::kPairingEnded, "(watch) RequestPairDeviceAsync done",
     "goes on to open the link"},
    {Part::kConnection, LogEvent::kOpenBegins, "(watch) FromIdAsync ...", "opens the link",
     Traits().Phase("opening the link")},
    {Part::kConnection, LogEvent::kOpenBeginsAfterClose,
     "(watch) DisConnect, watch FromIdAsync ...", "opens the link again",
     Traits().Phase("opening the link")},
    {Part::kConnection, LogEvent::kOpenDone, "(watch) FromIdAsync done dt:{ms}ms",
     "the open request took {ms} ms"},
    {Part::kConnection, LogEvent::kOpenCancelled, "(watch) FromIdAsync was canceled by user",
     "the platform cancelled the open request", Traits().Trouble()},
    {Part::kConnection, LogEvent::kAttemptGivenUp,
     "(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:{givenUp} dt:{ms}ms",
     "the attempt is given up after {ms} ms", Traits().Mark("given up").Trouble()},
    {Part::kConnection, LogEvent::kOpenGaveNone,
     "(watch) wfdDevice is null,Re FromIdAsync:{number} {name}",
     "open request {number} gave no device", Traits().Trouble()},
    {Part::kConnection, LogEvent::kLinkUp,
     "(watch) Devices connected on L2 layer, connecting to name({name}),time:{ms}ms({}),"
     "watch:{}ms({}),fromid:{}ms({}) IPAddress: loc:{local} remote:{remote}",
     "link to {name} is up: {local} to {remote}", Traits().Phase("connected")},
    {Part::kConnection, LogEvent::kNoLink, "(watch) wfdDevice is null, return",
     "the attempt ends without a link", Traits().Trouble()},
    {Part::kConnection, LogEvent::kAttemptError, "(watch) ConnDevice Err:{text}",
     "the platform failed: {text}", Traits().Mark("error").Trouble()},
    {Part::kLink, LogEvent::kStatusChanged, "(watch) Connection status changed: {text}",
     "the platform reports the link: {text}",
     Traits().Mark("{text}").TroubleIf(IsDisconnected).ByPlatform()},
    {Part::kConnection, LogEvent::kCloseBegins, "(watch) DoDisConnect ...", "closes the link",
     Traits().Phase("closing the link")},
    {Part::kConnection, LogEvent::kOther, "(watch) DoDisConnect timer out,try:{number}",
     "no report of the close, try {number}", Traits().Trouble()},
    {Part::kConnection, LogEvent::kOther, "(watch) DoDisConnect OK, do :{number}",
     "the link is closed, tries: {number}"},
    {Part::kConnection, LogEvent::kOther, "(watch) DoDisConnect Err:{text}",
     "the platform failed to close: {text}", Traits().Mark("close failed").Trouble()},
    {Part::kConnection, LogEvent::kCloseEnded, "(watch) DoDisConnect done,do:{text}",
     "has closed: {text}", Traits().TroubleIf(IsNotClosed)},
    {Part::kHost, LogEvent::kOther, "(watch) UnpairAsync OK", "asks to unpair",
     Traits().Mark("unpairs")},
    {Part::kHost, LogEvent::kUnknownDevice, "(watch) Watch again,try...",
     "cannot unpair what was not reported", Traits().Mark("unknown device").Trouble()},
    {Part::kCheck, LogEvent::kProbing, "(watch) ping ...", "probes the link",
     Traits().Phase("probing the link")},
    {Part::kCheck, LogEvent::kProbed, "(watch) ping done ret:{number} dt:{ms}ms DisConnect:{}",
     "replies: {number}, in {ms} ms", Traits().TroubleIf(HasNoReplies)},
    {Part::kCheck, LogEvent::kNotRecovered, "(watch) Ping Failed,Re Pair Failed!{name}",
     "{name} is silent, and was recovered once", Traits().Mark("{name} not recovered").Trouble()},
    {Part::kCheck, LogEvent::kRecovers, "(watch) Ping Failed,Unpair,Re Pair... {name}",
     "{name} is silent: recovers it", Traits().Trouble().Phase("recovering the link")},
    {Part::kCheck, LogEvent::kRecoversByWatch, "(watch) Ping Failed,Watch,Unpair,Re Pair... {name}",
     "{name} is silent: looks for it to recover it",
     Traits().Trouble().Phase("recovering the link")},
    // Only on standard output; the host is not notified of them.
    {Part::kHost, LogEvent::kOther, "(watch) stop watch timer out",
     "the stop of the pass is not reported", Traits().Trouble()},
    {Part::kHost, LogEvent::kOther, "watch timer out", "the time of the wait is over",
     Traits().Trouble()},
    {Part::kHost, LogEvent::kOther, "unpair timer out", "the end of the unpairing is not reported",
     Traits().Trouble()},
    {Part::kConnection, LogEvent::kOther, "(watch) RequestPairDeviceAsync ret",
     "the pairing failed", Traits().Trouble()},
    {Part::kConnection, LogEvent::kOther, "OnPairingRequested:{number}", "the ceremony asks"},
};
// clang-format on

inline constexpr LogLineKind kUnknownLine = {Part::kHost, LogEvent::kOther, "", "{text}"};

}  // namespace lanvoss::log
