// Every time-out, pause and count of the core, in one place. A host can rely on them, because
// nothing changes them. docs/limits.md has their sums.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lanvoss {

// No new pass and no new open request begins later than this after the start of an attempt, so that
// a host does not wait for ever for a device that is not there.
inline constexpr std::int32_t kAttemptLimitMs = 60'000;
// How long a request waits for its attempt to finish. Longer than an attempt, so that a find at its
// end can still pair and open.
inline constexpr std::uint32_t kDoneWaitMs = 100'000;
static_assert(kDoneWaitMs > std::uint32_t{kAttemptLimitMs});

// Starting the watcher. A platform may accept the call and not start. So it is asked again, for as
// long as an attempt may take.
inline constexpr std::int32_t kStartLimitMs = 60'000;
inline constexpr std::uint32_t kStartPauseMs = 500;
static_assert(kStartLimitMs <= kAttemptLimitMs);

// Stopping the watcher. The platform is asked again, because the stopped handler may have begun the
// next pass meanwhile.
inline constexpr int kStopTries = 5;
inline constexpr std::uint32_t kStopWaitMs = 2'000;
inline constexpr std::uint32_t kStopPauseMs = 1'000;
// Only very slow calls of the platform take nearly as long.
inline constexpr std::int32_t kStopLimitMs = 60'000;
static_assert(kStopTries * (kStopWaitMs + kStopPauseMs) < std::uint32_t{kStopLimitMs});

// Pairing. 15 means that a device insists on owning the group, and two devices that both insist do
// not connect. With 14 this one owns the group unless the other insists.
inline constexpr std::int16_t kGroupOwnerIntent = 14;
// After a failed pairing, before the link is opened, which is tried in any case.
inline constexpr std::uint32_t kPairingFailedPauseMs = 500;
// For the report that an unpairing has taken the link down. Without a report all of this time
// passes, so it is no longer than a request waits.
inline constexpr std::uint32_t kUnpairWaitMs = 100'000;
static_assert(kUnpairWaitMs <= kDoneWaitMs);

// Opening a link. An open request may give no link, and the next one may give it.
inline constexpr int kOpenTries = 5;
inline constexpr std::uint32_t kOpenPauseMs = 200;

// Closing a link. The wait is for the report of its end; the status is read after it in any case.
inline constexpr int kCloseTries = 5;
inline constexpr std::uint32_t kCloseWaitMs = 2'000;

// Probing a link. One answer is enough, so single losses do not count.
inline constexpr int kEchoTries = 4;
inline constexpr std::uint32_t kEchoTimeoutMs = 3'000;  // of one receive, and of one send

// Six two-digit hexadecimal groups joined by colons.
inline constexpr std::size_t kMacLength = 17;
// The buffer for the current directory, with its closing zero.
inline constexpr std::size_t kDirectoryCapacity = 260;

}  // namespace lanvoss
