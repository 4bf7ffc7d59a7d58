#include "situation.h"

#include <algorithm>
#include <condition_variable>
#include <iterator>
#include <mutex>
#include <string_view>
#include <unordered_set>

#include "log_line.h"
#include "notice.h"

namespace lanvoss::program {
namespace {

struct Shared {
  std::mutex mutex;  // guards everything below
  std::condition_variable change;
  Situation situation;
  std::vector<std::string> reported;  // names, in the order of their first report
  std::unordered_set<std::string> known;
};

// Never destroyed: the library may call its host late.
Shared& TheShared() {
  static auto& shared = *new Shared;
  return shared;
}

void NoteFind(Situation& situation, const LogLine&) { situation.isFound = true; }

void NoteError(Situation& situation, const LogLine& line) { situation.error = line.text; }

void NoteEndOfWatch(Situation& situation, const LogLine&) { situation.isWatchOver = true; }

void NoteRecovery(Situation& situation, const LogLine&) { situation.isRecovery = true; }

// What a line changes, and what is being done from it on. A phase that ends with a blank goes on
// with the device's name.
struct Change {
  Step step;
  void (*note)(Situation& situation, const LogLine& line);
  std::string_view phase;
};

constexpr auto kNothing = [](Situation&, const LogLine&) {};

constexpr Change kChanges[] = {
    {Step::kWatchBegins, kNothing, "looking for "},
    {Step::kPassStarting, [](Situation& situation, const LogLine&) { ++situation.passes; }, {}},
    {Step::kFound, NoteFind, "found "},
    {Step::kWatchRefused, NoteError, {}},
    {Step::kWatchEnded, NoteEndOfWatch, {}},
    {Step::kWatchedGone, NoteEndOfWatch, {}},
    {Step::kGapWait, kNothing, "keeping the gap from the last disconnect"},
    {Step::kAttemptBegins, NoteFind, {}},
    {Step::kUnpairing, kNothing, "unpairing"},
    {Step::kPairingBegins, kNothing, "pairing"},
    {Step::kCeremonyBegins,
     [](Situation& situation, const LogLine&) { situation.isPairing = true; },
     {}},
    {Step::kPairingStatus,
     [](Situation& situation, const LogLine& line) {
       situation.isPairing = false;
       situation.pairingStatus = line.text;
     },
     {}},
    {Step::kOpenBegins, kNothing, "opening the link"},
    {Step::kOpenBeginsAfterClose, kNothing, "opening the link"},
    {Step::kOpenDone, [](Situation& situation, const LogLine&) { ++situation.opens; }, {}},
    {Step::kLinkUp, kNothing, "connected"},
    {Step::kAttemptError, NoteError, {}},
    {Step::kCloseBegins, kNothing, "closing the link"},
    {Step::kProbing, kNothing, "probing the link"},
    {Step::kProbed,
     [](Situation& situation, const LogLine& line) { situation.replies = line.number; },
     {}},
    {Step::kRecovers, NoteRecovery, "recovering the link"},
    {Step::kRecoversByWatch, NoteRecovery, "recovering the link"},
};

void Note(Situation& situation, const LogLine& line) {
  const auto* change = std::ranges::find(kChanges, line.step, &Change::step);
  if (change == std::end(kChanges)) {
    return;
  }
  change->note(situation, line);
  if (!change->phase.empty()) {
    situation.phase = change->phase;
    if (situation.phase.ends_with(' ')) {
      situation.phase += line.name.empty() ? "devices" : line.name;
    }
  }
}

}  // namespace

void HearSituation(const Notification& notification) {
  if (notification.kind != "info") {
    return;
  }
  const LogLine line = Understand(notification.message);
  Shared& shared = TheShared();
  const std::lock_guard lock(shared.mutex);
  Note(shared.situation, line);
  if (line.step == Step::kReported && shared.known.insert(line.name).second) {
    shared.reported.push_back(line.name);
    ++shared.situation.devices;
  }
  shared.change.notify_all();
}

Situation TheSituation() {
  Shared& shared = TheShared();
  const std::lock_guard lock(shared.mutex);
  return shared.situation;
}

std::vector<std::string> ReportedNames() {
  Shared& shared = TheShared();
  const std::lock_guard lock(shared.mutex);
  return shared.reported;
}

UnderWay::UnderWay() {
  Shared& shared = TheShared();
  const std::lock_guard lock(shared.mutex);
  shared.situation = {.begun = std::chrono::steady_clock::now(), .isOver = false};
  shared.reported.clear();
  shared.known.clear();
}

UnderWay::~UnderWay() {
  Shared& shared = TheShared();
  const std::lock_guard lock(shared.mutex);
  shared.situation.isOver = true;
}

void WaitForWatch(const std::stop_token& interrupted) {
  Shared& shared = TheShared();
  std::unique_lock lock(shared.mutex);
  while (!shared.situation.isWatchOver && !interrupted.stop_requested()) {
    shared.change.wait_for(lock, std::chrono::milliseconds(kNoticeMs));
  }
}

}  // namespace lanvoss::program
