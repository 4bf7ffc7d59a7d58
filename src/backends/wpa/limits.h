// Every wait, and every address, of the radio on wpa_supplicant, in one place.
#pragma once

#include <cstdint>

namespace lanvoss::wpa {

// The reply to a command.
inline constexpr std::uint32_t kReplyMs = 10'000;
// After this silence wpa_supplicant is asked whether it is there. It then has the same time to
// answer.
inline constexpr std::uint32_t kSilenceMs = 5'000;
// Between two tries to reach a wpa_supplicant that is gone.
inline constexpr std::uint32_t kReturnPauseMs = 1'000;

// One pass of a watcher.
inline constexpr std::uint32_t kPassMs = 10'000;
// Its first part, which looks where devices listen.
inline constexpr std::uint32_t kQuickFindMs = 2'000;
static_assert(kQuickFindMs < kPassMs);
// When a pass reports the devices that this machine has links with. Not at once: the pass must not
// end before its caller has seen the status Started.
inline constexpr std::uint32_t kLinkedMs = 100;
static_assert(kLinkedMs < kPassMs);

// There is one negotiation at a time. This is how long the next one waits, which is longer than
// another takes.
inline constexpr std::uint32_t kTurnMs = 120'000;
// Looking for a device that wpa_supplicant does not know, or has not seen for a minute.
inline constexpr std::uint32_t kSeekMs = 12'000;
// From the request to the group. A device that answers by itself needs 2 s; one on which a person
// must push a button takes longer.
inline constexpr std::uint32_t kNegotiationMs = 60'000;
// From the invitation to its answer: milliseconds to 2 s from a device that listens.
inline constexpr std::uint32_t kInvitationMs = 3'000;
inline constexpr int kInvitations = 3;
// From there to the group with the device in it. A formation that fails takes 16 s.
inline constexpr std::uint32_t kGroupMs = 20'000;
// A group exists for at least this time. A device whose group ends while it enters searches it for
// 15 s, and accepts no invitation meanwhile.
inline constexpr std::uint32_t kShortestGroupMs = 500;
// A link that a pairing has made is taken down when no open request has taken it by then.
inline constexpr std::uint32_t kUnclaimedMs = 20'000;
// The most replies that the list of stored networks is read from, and the most devices in one group
// that are read.
inline constexpr int kNetworkReplies = 64;
inline constexpr int kLargestGroup = 64;
// Addresses by DHCP, when the handshake has allocated none.
inline constexpr std::uint32_t kLeaseMs = 10'000;
// A pairing, and an open request.
static_assert(kQuickFindMs + kSeekMs + kNegotiationMs + kGroupMs + kLeaseMs < kTurnMs);
static_assert(kQuickFindMs + kSeekMs + kInvitations * kInvitationMs + 2 * kGroupMs + kLeaseMs <
              kTurnMs);
// After this silence of a client the owner of a group asks whether it is there. In seconds, as the
// command takes them. The end of the client is reported some 12 s later.
inline constexpr char kClientInactivityS[] = "15";

// What the owner of a group has and gives. The same network on every machine, which no router hands
// out.
inline constexpr char kOwnerAddress[] = "192.168.49.1";
inline constexpr char kNetworkMask[] = "255.255.255.0";
inline constexpr char kFirstAddress[] = "192.168.49.10";
inline constexpr char kLastAddress[] = "192.168.49.40";

}  // namespace lanvoss::wpa
