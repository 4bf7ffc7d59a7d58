// Every time-out, pause and count of the library, in one place. A host can count on them, since
// nothing sets them otherwise; docs/limits.md works out what they come to.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lanvoss {

// From the start of an attempt no new pass and no new open request begins after this time, so that
// a device that is not there does not hold up its host for ever.
inline constexpr std::int32_t kAttemptLimitMs = 60'000;
// How long a request waits for its attempt to finish. Longer than an attempt, so that what has
// begun just in time can still pair and open.
inline constexpr std::uint32_t kDoneWaitMs = 100'000;
static_assert(kDoneWaitMs > std::uint32_t{kAttemptLimitMs});

// Starting the watcher. A platform may take the call and not start; it is asked again, for as long
// as an attempt may take.
inline constexpr std::int32_t kStartLimitMs = 60'000;
inline constexpr std::uint32_t kStartPauseMs = 500;
static_assert(kStartLimitMs <= kAttemptLimitMs);

// Stopping the watcher. It is asked for again, since the stopped handler may have begun the next
// pass meanwhile.
inline constexpr int kStopTries = 5;
inline constexpr std::uint32_t kStopWaitMs = 2'000;
inline constexpr std::uint32_t kStopPauseMs = 1'000;
// Only calls of the platform that take very long come near it.
inline constexpr std::int32_t kStopLimitMs = 60'000;
static_assert(kStopTries * (kStopWaitMs + kStopPauseMs) < std::uint32_t{kStopLimitMs});

// Pairing. 15 is the strongest wish to own the group, and two devices that both insist do not come
// together; with 14 this one owns it unless the other insists.
inline constexpr std::int16_t kGroupOwnerIntent = 14;
// After a pairing that failed, before the opening that is tried all the same.
inline constexpr std::uint32_t kPairingFailedPauseMs = 500;
// For the report that an unpairing has taken the link down. Where none comes, all of it passes; so
// it is no longer than a request waits.
inline constexpr std::uint32_t kUnpairWaitMs = 100'000;
static_assert(kUnpairWaitMs <= kDoneWaitMs);

// Opening a link. An open request may give no device where the next one gives it.
inline constexpr int kOpenTries = 5;
inline constexpr std::uint32_t kOpenPauseMs = 200;

// Closing a link. The wait is for the report of its end; the status is read in any case.
inline constexpr int kCloseTries = 5;
inline constexpr std::uint32_t kCloseWaitMs = 2'000;

// Probing a link. One answer is enough, so single losses do not count.
inline constexpr int kEchoTries = 4;
inline constexpr std::uint32_t kEchoTimeoutMs = 3'000;  // of one receive, and of one send

// Six two-digit hexadecimal groups joined by colons.
inline constexpr std::size_t kMacLength = 17;
// What the system may put the current directory into, with its closing zero.
inline constexpr std::size_t kDirectoryCapacity = 260;

}  // namespace lanvoss
