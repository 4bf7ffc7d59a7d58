// What the library's log lines say. The table of them in log_line.cc is the one place of the
// programs that knows their wording.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "log/notification.h"
#include "log/operation_status.h"

namespace lanvoss::log {

// The lines that somebody acts on.
enum class LogEvent {
  kOther,
  // The watch.
  kWatchBegins,
  kWatchBegun,    // the platform runs its watcher
  kWatchRefused,  // the platform did not start its watcher
  kPassStarting,
  kReported,      // a device, by the running pass
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
  kUnpairing,  // and waits for the report of it
  kPairingBegins,
  kCeremonyBegins,  // the device is not paired yet
  kPairingStatus,
  kPairingEnded,
  kOpenBegins,
  kOpenBeginsAfterClose,  // the link held before has been let go
  kOpenDone,              // with or without a link
  kOpenGaveNone,
  kOpenCancelled,   // by the platform
  kAttemptGivenUp,  // no time is left, or the host gave up
  kLinkUp,
  kNoLink,
  kAttemptError,  // of the platform; who waits for the attempt goes on waiting
  // The link.
  kStatusChanged,
  kCloseBegins,
  kCloseEnded,
  // The check of the link.
  kProbing,
  kProbed,
  kRecovers,
  kRecoversByWatch,  // the same for a device that the watcher has not reported
  kNotRecovered,     // since there was one recovery already
};

// Who is at work.
enum class Part { kHost, kWatcher, kConnection, kCheck, kLink };

struct LogLineKind;

struct LogLine {
  const LogLineKind* kind;
  LogEvent event;
  // Those that the line has.
  std::string name = {};  // of a device, as the device chose it
  std::string id = {};
  std::string text = {};
  std::string local = {};  // address
  std::string remote = {};
  std::optional<std::int32_t> number = {};
  std::optional<std::int32_t> ms = {};
};

// What only some kinds of lines have.
struct LogLineTraits {
  std::string_view mark = {};  // the words for the picture as short as can be; none: it has a span
  bool (*isTrouble)(const LogLine& line) = nullptr;  // none: never
  bool byPlatform = false;      // written by an event handler, so on a thread of the platform's
  std::string_view phase = {};  // of the operation, from this line on
  void (*change)(OperationStatus& status, const LogLine& line) = nullptr;
};

// All that the programs know of a kind of line. Texts have the line's {fields}; {} in a pattern is
// a number that nobody asks for.
struct LogLineKind {
  Part part;
  LogEvent event;
  std::string_view pattern;
  std::string_view words;  // for readers who do not know the log
  LogLineTraits more = {};
};

// A message of the kind "info" is a log line without its time stamp. Any other, and one that is not
// known, is all text.
LogLine ParseLogLine(const Notification& notification);

bool IsKnown(const LogLine& line);

// What the line tells, for readers who do not know the log.
std::string WordsOf(const LogLine& line);

// A short mark for the picture, if the line has one.
std::string MarkOf(const LogLine& line);

// Whether the line tells of something that went wrong.
bool IsTrouble(const LogLine& line);

// Changes what the line tells of the operation.
void Apply(const LogLine& line, OperationStatus& status);

}  // namespace lanvoss::log
