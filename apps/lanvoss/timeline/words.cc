#include "timeline/words.h"

#include <algorithm>
#include <string_view>

namespace lanvoss::program {
namespace {

constexpr bool kTrouble = true;
constexpr bool kFine = false;

constexpr Wording kWordings[] = {
    {Step::kUnknown, Part::kHost, kFine, "{text}", nullptr},
    {Step::kRemembered, Part::kWatcher, kFine, "{name} remembered from the cache, {id}", nullptr},
    {Step::kWatchBegins, Part::kHost, kFine, "looks for {name}", nullptr},
    {Step::kWatchBegun, Part::kHost, kFine, "the watcher runs", nullptr},
    {Step::kWatchRefused, Part::kWatcher, kTrouble, "the platform refuses its watcher: {text}",
     "refused"},
    {Step::kPassStarting, Part::kWatcher, kFine, "a pass starts", nullptr},
    {Step::kPassStarted, Part::kWatcher, kFine, "the pass runs: {text}, tries: {number}", nullptr},
    {Step::kPassNotStarted, Part::kWatcher, kTrouble, "the pass does not run: {text}, try {number}",
     "does not start"},
    {Step::kReported, Part::kWatcher, kFine, "{name} reported, {id}", "{name}"},
    {Step::kUpdated, Part::kWatcher, kFine, "{name} updated, {id}", nullptr},
    {Step::kRemoved, Part::kWatcher, kFine, "{name} gone, {id}", "{name} gone"},
    {Step::kFound, Part::kWatcher, kFine, "{name} found after {ms} ms", "{name} found"},
    {Step::kEnumerated, Part::kWatcher, kFine, "the pass has reported all it sees", nullptr},
    {Step::kWatchesAgain, Part::kWatcher, kFine, "the pass has stopped, another follows", nullptr},
    {Step::kWatchEnded, Part::kWatcher, kFine, "the pass has stopped", nullptr},
    {Step::kWatchedGone, Part::kWatcher, kTrouble, "{name} is gone, seen last after {ms} ms",
     "{name} gone"},
    {Step::kStopBegins, Part::kHost, kFine, "stops the watcher", nullptr},
    {Step::kStopDone, Part::kHost, kFine, "has stopped the watcher", nullptr},
    {Step::kStopFailed, Part::kHost, kTrouble, "could not stop the watcher", "stop failed"},
    {Step::kPassStopping, Part::kHost, kFine, "asks the pass to stop", nullptr},
    {Step::kPassStopped, Part::kHost, kFine, "the pass has stopped: {text}, tries: {number}",
     nullptr},
    {Step::kPassNotStopped, Part::kHost, kTrouble, "the pass does not stop: {text}, try {number}",
     "does not stop"},
    {Step::kPassStopRefused, Part::kHost, kTrouble, "the platform refuses to stop: {text}",
     "stop refused"},
    {Step::kNoName, Part::kHost, kTrouble, "a request without a name", "no name"},
    {Step::kGapWait, Part::kHost, kFine, "{name}: waits {ms} ms since the last disconnect",
     nullptr},
    {Step::kAlreadyConnected, Part::kHost, kFine,
     "{name} is connected already: {local} to {remote}", nullptr},
    {Step::kConnectsById, Part::kHost, kFine, "connects {name} at once, {id}", nullptr},
    {Step::kConnectsByWatch, Part::kHost, kFine, "{name} is not known and looked for", nullptr},
    {Step::kRequestFailed, Part::kHost, kTrouble, "no link to {name} after {ms} ms", nullptr},
    {Step::kRequestCancelled, Part::kHost, kTrouble, "the platform cancelled the request",
     "cancelled"},
    {Step::kAttemptBegins, Part::kConnection, kFine, "connects {name}, {id}", nullptr},
    {Step::kUnpairing, Part::kConnection, kFine, "unpairs", nullptr},
    {Step::kPairingBegins, Part::kConnection, kFine, "looks whether to pair", nullptr},
    {Step::kCeremonyBegins, Part::kConnection, kFine, "pairs", nullptr},
    {Step::kCeremonyDone, Part::kConnection, kFine, "the pairing took {ms} ms", nullptr},
    {Step::kPairingStatus, Part::kConnection, kFine, "pairing: {text}", nullptr},
    {Step::kPairingEnded, Part::kConnection, kFine, "goes on to open the link", nullptr},
    {Step::kOpenBegins, Part::kConnection, kFine, "opens the link", nullptr},
    {Step::kOpenBeginsAfterClose, Part::kConnection, kFine, "opens the link anew", nullptr},
    {Step::kOpenDone, Part::kConnection, kFine, "the open request took {ms} ms", nullptr},
    {Step::kOpenGaveNone, Part::kConnection, kTrouble, "open request {number} gave no device",
     nullptr},
    {Step::kOpenCancelled, Part::kConnection, kTrouble, "the platform cancelled the open request",
     nullptr},
    {Step::kAttemptGivenUp, Part::kConnection, kTrouble, "the attempt is given up after {ms} ms",
     "given up"},
    {Step::kLinkUp, Part::kConnection, kFine, "link to {name} is up: {local} to {remote}", nullptr},
    {Step::kNoLink, Part::kConnection, kTrouble, "the attempt ends without a link", nullptr},
    {Step::kAttemptError, Part::kConnection, kTrouble, "the platform failed: {text}", "error"},
    {Step::kStatusChanged, Part::kLink, kFine, "the platform reports the link: {text}", "{text}"},
    {Step::kCloseBegins, Part::kConnection, kFine, "closes the link", nullptr},
    {Step::kCloseTimedOut, Part::kConnection, kTrouble, "no report of the close, try {number}",
     nullptr},
    {Step::kClosed, Part::kConnection, kFine, "the link is closed, tries: {number}", nullptr},
    {Step::kCloseError, Part::kConnection, kTrouble, "the platform failed to close: {text}",
     "close failed"},
    {Step::kCloseEnded, Part::kConnection, kFine, "has closed: {text}", nullptr},
    {Step::kUnpairRequested, Part::kHost, kFine, "asks to unpair", "unpairs"},
    {Step::kUnpairUnknown, Part::kHost, kTrouble, "cannot unpair what was not reported",
     "unknown device"},
    {Step::kProbing, Part::kCheck, kFine, "probes the link", nullptr},
    {Step::kProbed, Part::kCheck, kFine, "replies: {number}, in {ms} ms", nullptr},
    {Step::kRecovers, Part::kCheck, kTrouble, "{name} is silent: recovers it", nullptr},
    {Step::kRecoversByWatch, Part::kCheck, kTrouble, "{name} is silent: looks for it to recover it",
     nullptr},
    {Step::kNotRecovered, Part::kCheck, kTrouble, "{name} is silent, and was recovered once",
     "{name} not recovered"},
};

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

}  // namespace

const Wording& WordingOf(Step step) {
  const auto* const found = std::ranges::find(kWordings, step, &Wording::step);
  return found == std::ranges::end(kWordings) ? kWordings[0] : *found;
}

std::string WordsOf(const LogLine& line) {
  return line.step == Step::kWatchBegins && line.name.empty()
             ? "looks for every device"
             : FillIn(WordingOf(line.step).words, line);
}

std::string FillIn(const char* words, const LogLine& line) {
  std::string filled;
  std::string_view rest = words;
  for (auto open = rest.find('{'); open != std::string_view::npos; open = rest.find('{')) {
    const auto close = rest.find('}', open);
    filled += rest.substr(0, open);
    filled += FieldOf(rest.substr(open + 1, close - open - 1), line);
    rest.remove_prefix(close + 1);
  }
  return filled += rest;
}

bool IsTrouble(const LogLine& line) {
  if (line.step == Step::kPairingStatus) {
    return line.text != "Paired" && line.text != "AlreadyPaired";
  }
  if (line.step == Step::kProbed) {
    return line.number == 0;
  }
  if (line.step == Step::kStatusChanged) {
    return line.text == "Disconnected";
  }
  if (line.step == Step::kCloseEnded) {
    return line.text != "ok";
  }
  return WordingOf(line.step).trouble;
}

bool IsByPlatform(Step step) {
  constexpr Step kSteps[] = {Step::kReported,   Step::kUpdated,     Step::kRemoved,
                             Step::kFound,      Step::kEnumerated,  Step::kWatchesAgain,
                             Step::kWatchEnded, Step::kWatchedGone, Step::kStatusChanged};
  return std::ranges::find(kSteps, step) != std::ranges::end(kSteps);
}

}  // namespace lanvoss::program
