// What the library's log lines say. The one place of the program that knows their wording.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lanvoss::program {

// In brackets: which fields of the line are filled besides.
enum class Step {
  kUnknown,
  // The cache.
  kRemembered,  // a device was loaded (number: the line in the file; name, id)
  // The watch.
  kWatchBegins,   // (name; empty: every device)
  kWatchBegun,    // the platform runs its watcher
  kWatchRefused,  // the platform did not start its watcher (text)
  kPassStarting,
  kPassStarted,     // (number: tries; text: the watcher's status; ms)
  kPassNotStarted,  // one try that did not do it (number: the try; text, ms as above)
  kReported,        // by the running pass (number: its position in the pass; name, id)
  kUpdated,         // (name, id)
  kRemoved,         // (name, id)
  kFound,           // the device that was looked for (name; ms from the start)
  kEnumerated,      // the pass has reported every device
  kWatchesAgain,    // the pass has stopped, the next one begins
  kWatchEnded,      // the pass has stopped, and no other follows
  kWatchedGone,     // the same, since the found device was not seen again (name; ms it was seen)
  kStopBegins,      // the host or the end of a request stops the watcher
  kStopDone,
  kStopFailed,
  kPassStopping,     // the running pass is stopped
  kPassStopped,      // (number: tries; text: the watcher's status; ms)
  kPassNotStopped,   // one try that did not do it (number: the try; text, ms as above)
  kPassStopRefused,  // by the platform (number: the try; text)
  // Requests for an address.
  kNoName,
  kGapWait,           // before the request (name; ms)
  kAlreadyConnected,  // (name; local, remote)
  kConnectsById,      // a direct request (name, id)
  kConnectsByWatch,   // a direct request for a device that is not known (name)
  kRequestFailed,     // (name; ms)
  kRequestCancelled,  // by the platform
  // A connection attempt.
  kAttemptBegins,  // (name, id)
  kUnpairing,      // and waits for the report of it
  kPairingBegins,
  kCeremonyBegins,  // the device is not paired yet
  kCeremonyDone,    // (ms)
  kPairingStatus,   // (text)
  kPairingEnded,
  kOpenBegins,
  kOpenBeginsAfterClose,  // the device held before has been let go
  kOpenDone,              // with or without a device (ms)
  kOpenGaveNone,          // (number: the try; name)
  kOpenCancelled,         // by the platform
  kAttemptGivenUp,        // no time is left, or the host gave up (ms)
  kLinkUp,                // (name; ms from the start; local, remote)
  kNoLink,
  kAttemptError,  // of the platform; who waits for the attempt goes on waiting (text)
  // The link.
  kStatusChanged,  // (text)
  kCloseBegins,
  kCloseTimedOut,    // (number: the try)
  kClosed,           // (number: tries)
  kCloseError,       // of the platform (text)
  kCloseEnded,       // (text: ok, or err when the link is still held)
  kUnpairRequested,  // by the host
  kUnpairUnknown,    // the same for a device that the watcher has not reported
  // The check of the link.
  kProbing,
  kProbed,           // (number: replies; ms)
  kRecovers,         // (name)
  kRecoversByWatch,  // the same for a device that the watcher has not reported (name)
  kNotRecovered,     // since there was one recovery already (name)
};

struct LogLine {
  Step step = Step::kUnknown;
  std::string name = {};  // of a device, as the device chose it
  std::string id = {};
  std::string text = {};
  std::string local = {};  // address
  std::string remote = {};
  std::optional<std::int32_t> number = {};
  std::optional<std::int32_t> ms = {};
};

// `message` is a log line without its time stamp, as the kind "info" brings it.
LogLine Understand(std::string_view message);

}  // namespace lanvoss::program
