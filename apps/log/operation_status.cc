#include "log/operation_status.h"

namespace lanvoss::log {

void Apply(const LogLine& line, OperationStatus& status) {
  using enum LogEvent;
  if (std::string phase = PhaseOf(line); !phase.empty()) {
    status.phase = std::move(phase);
  }
  if (line.event == kPassStarting) {
    ++status.passes;
  } else if (line.event == kFound || line.event == kAttemptBegins) {
    status.isFound = true;
  } else if (line.event == kWatchEnded || line.event == kWatchedGone) {
    status.isWatchOver = true;
  } else if (line.event == kCeremonyBegins) {
    status.isPairing = true;
  } else if (line.event == kPairingStatus) {
    status.isPairing = false;
    status.pairingStatus = line.text;
  } else if (line.event == kOpenDone) {
    ++status.opens;
  } else if (line.event == kWatchRefused || line.event == kAttemptError) {
    status.error = line.text;
  } else if (line.event == kProbed) {
    status.replies = line.number;
  } else if (line.event == kRecovers || line.event == kRecoversByWatch) {
    status.isRecovery = true;
  }
}

}  // namespace lanvoss::log
