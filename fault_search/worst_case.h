// The longest that the library may block, in virtual milliseconds, made of its own limits and of
// what the platform needs for one call.
#pragma once

#include <cstdint>

#include "watcher/limits.h"

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

}  // namespace lanvoss::worst_case
