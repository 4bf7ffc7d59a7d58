// Every time-out, pause and count of the library, in one place.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lanvoss {

// An attempt: from its start no new pass and no new open request begins after this time.
inline constexpr std::int32_t kAttemptLimitMs = 60'000;
// How long a request waits for its attempt to finish.
inline constexpr std::uint32_t kDoneWaitMs = 100'000;

// Starting the watcher.
inline constexpr std::int32_t kStartLimitMs = 60'000;
inline constexpr std::uint32_t kStartPauseMs = 500;

// Stopping the watcher.
inline constexpr int kStopTries = 5;
inline constexpr std::uint32_t kStopWaitMs = 2'000;
inline constexpr std::uint32_t kStopPauseMs = 1'000;
inline constexpr std::int32_t kStopLimitMs = 60'000;

// Pairing. 15 is the strongest wish to own the group.
inline constexpr std::int16_t kGroupOwnerIntent = 14;
inline constexpr std::uint32_t kPairingFailedPauseMs = 500;
inline constexpr std::uint32_t kUnpairWaitMs = 100'000;

// Opening a link.
inline constexpr int kOpenTries = 5;
inline constexpr std::uint32_t kOpenPauseMs = 200;

// Closing a link.
inline constexpr int kCloseTries = 5;
inline constexpr std::uint32_t kCloseWaitMs = 2'000;

// Probing a link.
inline constexpr int kEchoTries = 4;
inline constexpr std::uint32_t kEchoTimeoutMs = 3'000;  // of one receive, and of one send

// Six two-digit hexadecimal groups joined by colons.
inline constexpr std::size_t kMacLength = 17;
// What the system may put the current directory into, with its closing zero.
inline constexpr std::size_t kDirectoryCapacity = 260;

}  // namespace lanvoss
