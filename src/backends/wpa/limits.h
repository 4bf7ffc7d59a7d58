// Every wait, and every address, of the radio on wpa_supplicant, in one place.
#pragma once

#include <cstdint>

namespace lanvoss::wpa {

// The reply to a command.
inline constexpr std::uint32_t kReplyMs = 10'000;
// When nothing has come for so long, wpa_supplicant is asked whether it is there; as long again it
// has for the answer.
inline constexpr std::uint32_t kSilenceMs = 5'000;
// Between two tries to reach a wpa_supplicant that is gone.
inline constexpr std::uint32_t kReturnPauseMs = 1'000;

// One pass of a watcher.
inline constexpr std::uint32_t kPassMs = 10'000;
// Its first part, which looks where devices listen.
inline constexpr std::uint32_t kQuickFindMs = 2'000;
// When a pass tells of the devices that this machine has links with. Not at once: it must not be
// over before whoever began it has seen it run.
inline constexpr std::uint32_t kLinkedMs = 100;

// One negotiation at a time: how long one waits for its turn. The longest that another takes.
inline constexpr std::uint32_t kTurnMs = 120'000;
// Looking for a device that wpa_supplicant does not know, or has not heard of for a minute.
inline constexpr std::uint32_t kSeekMs = 12'000;
// From the request to the group, with a device that answers by itself: 2 s. One on which somebody
// has to push a button takes longer.
inline constexpr std::uint32_t kNegotiationMs = 60'000;
// From the invitation to its answer: milliseconds to 2 s from a device that listens.
inline constexpr std::uint32_t kInvitationMs = 3'000;
inline constexpr int kInvitations = 3;
// From there to the group with the device in it. A formation that fails takes 16 s.
inline constexpr std::uint32_t kGroupMs = 20'000;
// A group lives for so long at least. A device whose group goes while it enters looks for it for 15
// s and takes no invitation meanwhile.
inline constexpr std::uint32_t kShortestGroupMs = 500;
// Addresses by DHCP, when the handshake has allocated none.
inline constexpr std::uint32_t kLeaseMs = 10'000;
inline constexpr std::uint32_t kLeasePollMs = 50;
// The owner of a group asks a client that it has not heard of for so long whether it is there. In
// seconds, as the command takes them; the client's end is told some 12 s later.
inline constexpr char kClientInactivityS[] = "15";

// What the owner of a group has and gives. The same network on every machine, which no router hands
// out.
inline constexpr char kOwnerAddress[] = "192.168.49.1";
inline constexpr char kNetworkMask[] = "255.255.255.0";
inline constexpr char kFirstAddress[] = "192.168.49.10";
inline constexpr char kLastAddress[] = "192.168.49.40";

}  // namespace lanvoss::wpa
