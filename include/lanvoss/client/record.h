// What the log says about one operation of the library.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lanvoss/client/log_line.h"
#include "lanvoss/client/outcome.h"
#include "lanvoss/client/runtime.h"

namespace lanvoss::detail {

struct Record {
  Milliseconds begun{0};
  std::string phase;               // what is being done, in words; empty: nothing yet
  std::vector<std::string> names;  // in the order of their first report
  std::size_t passes = 0;          // that were begun
  std::size_t opens = 0;           // open requests that came back
  Step step = Step::kSearch;       // the latest
  std::optional<Milliseconds> found;
  std::optional<Milliseconds> pairingBegun;
  std::optional<Milliseconds> pairingEnded;
  std::optional<Milliseconds> openingBegun;
  std::optional<Milliseconds> linkUp;
  std::string pairingStatus;  // of the latest ceremony
  std::string watchError;     // of the platform, when it did not start its watcher
  std::string attemptError;   // of the platform, in a connection
  bool isStuck = false;       // the library waits for nothing more than its time-out
  bool isGivenUp = false;     // by the library, which may succeed at the next request
  bool isCancelled = false;   // by the platform
  bool lacksAddress = false;  // the link came up without a remote address
  bool isDisturbed = false;   // an attempt of an earlier operation has ended meanwhile
  bool isWatchOver = false;
  bool isUnknownDevice = false;  // it could not be unpaired
  std::optional<int> replies;    // of the latest probe
  bool isRecovery = false;       // the device was silent, and a recovery was begun

  bool IsPairing() const { return pairingBegun && !pairingEnded; }
};

inline void NoteName(Record& record, const std::string& name) {
  if (std::find(record.names.begin(), record.names.end(), name) == record.names.end()) {
    record.names.push_back(name);
  }
}

inline void NoteWatch(Record& record, const log::LogLine& line, Milliseconds now) {
  using log::LogEvent;
  if (line.event == LogEvent::kReported) {
    NoteName(record, line.name);
  } else if (line.event == LogEvent::kPassStarting) {
    ++record.passes;
  } else if (line.event == LogEvent::kWatchRefused) {
    record.watchError = line.text;
  } else if (line.event == LogEvent::kWatchBegins) {
    record.isWatchOver = false;  // what has ended is the watch before
  } else if (line.event == LogEvent::kWatchEnded || line.event == LogEvent::kWatchedGone) {
    record.isWatchOver = true;
  } else if (line.event == LogEvent::kFound) {
    record.found = now;
    // Given up, no connection follows, so the library's wait has no end but its time-out.
    record.isGivenUp = record.isStuck = line.givenUp == 1;
  }
}

inline void NotePairing(Record& record, const log::LogLine& line, Milliseconds now) {
  using log::LogEvent;
  if (line.event == LogEvent::kAttemptBegins) {
    record.found = record.found ? record.found : now;
    record.step = Step::kPairing;
  } else if (line.event == LogEvent::kCeremonyBegins) {
    record.pairingBegun = now;
    record.pairingEnded.reset();
  } else if (line.event == LogEvent::kPairingStatus) {
    record.pairingEnded = now;
    record.pairingStatus = line.text;
  } else if (line.event == LogEvent::kUnknownDevice) {
    record.isUnknownDevice = true;
  }
}

inline void NoteOpening(Record& record, const log::LogLine& line, Milliseconds now) {
  using log::LogEvent;
  if (line.event == LogEvent::kOpenBegins || line.event == LogEvent::kOpenBeginsAfterClose) {
    record.openingBegun = now;
    record.step = Step::kOpening;
  } else if (line.event == LogEvent::kOpenDone) {
    ++record.opens;
  } else if (line.event == LogEvent::kOpenCancelled || line.event == LogEvent::kRequestCancelled) {
    record.isCancelled = true;
  } else if (line.event == LogEvent::kAttemptGivenUp) {
    // Without an open request: the device was found too late.
    record.isGivenUp = line.givenUp == 1 || record.opens == 0;
  } else if (line.event == LogEvent::kLinkUp) {
    record.linkUp = now;
    record.lacksAddress = line.remote.empty();
    record.step = Step::kDone;
  } else if (line.event == LogEvent::kAttemptError) {
    record.attemptError = line.text;
    record.isStuck = true;
  }
}

inline void NoteCheck(Record& record, const log::LogLine& line) {
  using log::LogEvent;
  if (line.event == LogEvent::kProbed) {
    record.replies = line.number;
  } else if (line.event == LogEvent::kRecovers || line.event == LogEvent::kRecoversByWatch) {
    record.isRecovery = true;
  }
}

// Brings the record up to date with a line that was logged at `now`.
inline void Note(Record& record, const log::LogLine& line, Milliseconds now) {
  if (std::string phase = log::PhaseOf(line); !phase.empty()) {
    record.phase = std::move(phase);
  }
  NoteWatch(record, line, now);
  NotePairing(record, line, now);
  NoteOpening(record, line, now);
  NoteCheck(record, line);
}

inline std::optional<Milliseconds> Between(const std::optional<Milliseconds>& begin,
                                           const std::optional<Milliseconds>& end) {
  return begin && end ? std::optional(*end - *begin) : std::nullopt;
}

// Why a request that has ended by itself gave no link.
inline Reason ReasonOf(const Record& record) {
  if (!record.found) {
    return record.watchError.empty() ? Reason::kNotFound : Reason::kPlatformError;
  }
  if (record.IsPairing()) {
    return Reason::kTimedOut;
  }
  if (!record.pairingStatus.empty() && !log::IsPaired(record.pairingStatus)) {
    return Reason::kPairingFailed;
  }
  if (!record.attemptError.empty()) {
    return Reason::kPlatformError;
  }
  if (record.lacksAddress) {
    return Reason::kNoAddress;
  }
  return record.isGivenUp || record.isCancelled ? Reason::kGivenUp : Reason::kOpenFailed;
}

// The words of the platform that belong to the reason.
inline std::string WordsOf(const Record& record, Reason reason) {
  if (reason == Reason::kPairingFailed) {
    return record.pairingStatus;
  }
  if (reason == Reason::kPlatformError) {
    return record.attemptError.empty() ? record.watchError : record.attemptError;
  }
  return {};
}

// Whether a request that ended without a link may succeed when it is made again at once.
inline bool MaySucceedNow(const Record& record) {
  return record.isGivenUp || record.isCancelled || record.lacksAddress ||
         !record.attemptError.empty();
}

}  // namespace lanvoss::detail
