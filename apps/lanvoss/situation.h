// How things stand, as far as the library's log tells.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "notification.h"

namespace lanvoss::program {

// Of the operation that runs, or ran last.
struct Situation {
  std::chrono::steady_clock::time_point begun = {};
  bool isOver = true;
  std::string phase = {};          // what is being done, in words; empty: nothing yet
  std::size_t devices = 0;         // names that were reported
  int passes = 0;                  // that were begun
  int opens = 0;                   // open requests that came back
  bool isFound = false;            // the device that is looked for, or its id was known
  bool isPairing = false;          // since a ceremony has begun that has not ended
  std::string pairingStatus = {};  // of the latest ceremony
  std::string error = {};          // of the platform
  bool isWatchOver = false;
  std::optional<int> replies = {};  // of the latest probe
  bool isRecovery = false;          // the device was silent, and a recovery was begun
};

// A listener.
void HearSituation(const Notification& notification);

Situation TheSituation();

// In the order of their first report.
std::vector<std::string> ReportedNames();

// While one lives, an operation runs. There is one at a time.
class UnderWay {
 public:
  UnderWay();
  ~UnderWay();
  UnderWay(const UnderWay&) = delete;
  UnderWay& operator=(const UnderWay&) = delete;
};

// Returns when the watch has ended or `interrupted` is requested.
void WaitForWatch(const std::stop_token& interrupted);

}  // namespace lanvoss::program
