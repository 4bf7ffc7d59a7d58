// How far an operation of the library is, according to its log.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "lanvoss/client/log_line.h"

namespace lanvoss::log {

// Of the operation that runs, or ran last.
struct OperationStatus {
  std::chrono::steady_clock::time_point begun = {};
  bool isOver = true;
  std::string phase = {};          // what is being done, in words; empty: nothing yet
  std::size_t devices = 0;         // names that were reported
  std::size_t passes = 0;          // that were begun
  std::size_t opens = 0;           // open requests that came back
  bool isFound = false;            // the device that is looked for, or its id was known
  bool isPairing = false;          // a pairing ceremony has begun and not ended
  std::string pairingStatus = {};  // of the latest ceremony
  std::string error = {};          // of the platform
  bool isWatchOver = false;
  std::optional<int> replies = {};  // of the latest probe
  bool isRecovery = false;          // the device was silent, and a recovery was begun
};

// Brings the status up to date with the line.
void Apply(const LogLine& line, OperationStatus& status);

}  // namespace lanvoss::log
