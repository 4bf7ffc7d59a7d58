// Every time-out, pause and count of the library, in one place. Hosts have been written against
// these: what a request may take, how often a device is asked. So none of them can be set.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lanvoss {

// From the start of an attempt no new pass and no new open request begins after this time: a device
// that wakes up late is found within a minute, and one that is not there does not hold up its host
// for longer.
inline constexpr std::int32_t kAttemptLimitMs = 60'000;
// How long a request waits for its attempt to finish. Longer than an attempt, since what has begun
// just in time still pairs and opens.
inline constexpr std::uint32_t kDoneWaitMs = 100'000;
static_assert(kDoneWaitMs > std::uint32_t{kAttemptLimitMs});

// Starting the watcher. A platform that is busy with the pass before may take the call and not
// start; it is asked again twice a second, for as long as an attempt may take.
inline constexpr std::int32_t kStartLimitMs = 60'000;
inline constexpr std::uint32_t kStartPauseMs = 500;
static_assert(kStartLimitMs <= kAttemptLimitMs);

// Stopping the watcher. The report of a stop comes within milliseconds; one that does not come is
// asked for again, since the stopped handler may have begun the next pass meanwhile.
inline constexpr int kStopTries = 5;
inline constexpr std::uint32_t kStopWaitMs = 2'000;
inline constexpr std::uint32_t kStopPauseMs = 1'000;
// Only calls of the platform that take very long come near it.
inline constexpr std::int32_t kStopLimitMs = 60'000;
static_assert(kStopTries * (kStopWaitMs + kStopPauseMs) < std::uint32_t{kStopLimitMs});

// Pairing. 15 is the strongest wish to own the group, and two devices that both insist do not come
// together; with 14 this one owns it unless the other insists.
inline constexpr std::int16_t kGroupOwnerIntent = 14;
// A device needs a moment after a pairing that failed, before it can be opened all the same.
inline constexpr std::uint32_t kPairingFailedPauseMs = 500;
// For the report that an unpairing has taken the link down. Where there is none, the whole of it
// passes; so it is no longer than a request waits.
inline constexpr std::uint32_t kUnpairWaitMs = 100'000;
static_assert(kUnpairWaitMs <= kDoneWaitMs);

// Opening a link. A device that has just been paired may give none at first.
inline constexpr int kOpenTries = 5;
inline constexpr std::uint32_t kOpenPauseMs = 200;

// Closing a link.
inline constexpr int kCloseTries = 5;
inline constexpr std::uint32_t kCloseWaitMs = 2'000;

// Probing a link. An answer over the air takes milliseconds; four requests in a row are not lost by
// chance.
inline constexpr int kEchoTries = 4;
inline constexpr std::uint32_t kEchoTimeoutMs = 3'000;  // of one receive, and of one send

// Six two-digit hexadecimal groups joined by colons.
inline constexpr std::size_t kMacLength = 17;
// What the system may put the current directory into, with its closing zero.
inline constexpr std::size_t kDirectoryCapacity = 260;

}  // namespace lanvoss
