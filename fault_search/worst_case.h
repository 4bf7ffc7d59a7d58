// The longest time that the library may block, in virtual milliseconds: the sum of its limits and
// of the platform's time for one call.
#pragma once

#include <algorithm>
#include <cstdint>

#include "base/limits.h"

namespace lanvoss::worst_case {

inline constexpr std::int64_t kStartMs = kStartLimitMs + kStartPauseMs;
inline constexpr std::int64_t kStopMs = kStopTries * std::int64_t{kStopWaitMs + kStopPauseMs};
inline constexpr std::int64_t kCloseMs = kCloseTries * std::int64_t{kCloseWaitMs};
inline constexpr std::int64_t kProbeMs = kEchoTries * std::int64_t{kEchoTimeoutMs};
// A wait for the end of an attempt.
inline constexpr std::int64_t kDoneMs = kDoneWaitMs;

// Unpairing, pairing, closing the link from before, opening: one connection, on the caller's thread
// or in a handler.
constexpr std::int64_t ConnectMs(std::int64_t onePairingMs, std::int64_t oneOpeningMs) {
  return kUnpairWaitMs + onePairingMs + kPairingFailedPauseMs + kCloseMs +
         kOpenTries * (oneOpeningMs + kOpenPauseMs);
}

// The end of an object: the stop of its watcher, and the one call of the platform that another
// thread may be inside, which takes `oneCallMs` or is the receive of a probe.
constexpr std::int64_t EndMs(std::int64_t oneCallMs) {
  return kStopMs + std::max<std::int64_t>(oneCallMs, kEchoTimeoutMs);
}

}  // namespace lanvoss::worst_case
