// What the library's log lines say. Only the table in log_line.cc knows their wording.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "log/notification.h"
#include "log/operation_status.h"

namespace lanvoss::log {

// The lines that change something in the status or in the picture.
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
  // The link.
  kStatusChanged,
  kCloseBegins,
  kCloseEnded,
  // The check of the link.
  kProbing,
  kProbed,
  kRecovers,
  kRecoversByWatch,  // the same for a device that the watcher has not reported
  kNotRecovered,     // because there was a recovery before
};

// Which part of the work a line belongs to.
enum class Part { kHost, kWatcher, kConnection, kCheck, kLink };

struct LogLineKind;

struct LogLine {
  const LogLineKind* kind;
  LogEvent event;
  // Only the fields that the line has are filled.
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
  std::string_view mark = {};  // a short text for a mark in the picture; empty: no mark
  bool (*isTrouble)(const LogLine& line) = nullptr;  // none: never
  bool byPlatform = false;      // logged by an event handler, on a thread of the platform
  std::string_view phase = {};  // of the operation, from this line on
  void (*change)(OperationStatus& status, const LogLine& line) = nullptr;
};

// All that is known of a kind of line. Texts contain the line's {fields}; {} in a pattern is a
// number that is not used.
struct LogLineKind {
  Part part;
  LogEvent event;
  std::string_view pattern;
  std::string_view words;  // for readers who do not know the log
  LogLineTraits more = {};
};

// The message in a line of any log: after whatever a host, a service manager or the library itself
// writes before it, and to the end of the line. None: there is no message that is known.
std::optional<std::string_view> FindMessage(std::string_view line);

// A message of the kind "info" is a log line without its time stamp. Any other message, and a line
// that is not known, has its text alone.
LogLine ParseLogLine(const Notification& notification);

bool IsKnown(const LogLine& line);

// What the line says, for readers who do not know the log.
std::string WordsOf(const LogLine& line);

// A short mark for the picture, if the line has one.
std::string MarkOf(const LogLine& line);

// Whether the line says that something went wrong.
bool IsTrouble(const LogLine& line);

// Brings the status up to date with the line.
void Apply(const LogLine& line, OperationStatus& status);

}  // namespace lanvoss::log
