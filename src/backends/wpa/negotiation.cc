#include "backends/wpa/negotiation.h"

#include <string_view>

#include "backends/wpa/credentials.h"
#include "backends/wpa/fail.h"
#include "backends/wpa/finder.h"
#include "backends/wpa/groups.h"
#include "backends/wpa/limits.h"

namespace lanvoss::wpa {
namespace {

using Status = platform::DevicePairingResultStatus;

// How a negotiation ends, as the protocol numbers it.
constexpr char kRejectedByUser[] = "11";
constexpr char kNoAnswer[] = "-1";
// And an invitation.
constexpr char kAccepted[] = "0";
constexpr char kUnknownGroup[] = "8";

Status FailureOf(const Message& message) {
  const std::string status = message.Field("status");
  return status == kRejectedByUser ? Status::ConnectionRejected
         : status == kNoAnswer     ? Status::AuthenticationTimeout
                                   : Status::Failed;
}

// Raises platform::Error when the event says why, for example that no channel is allowed.
bool IsFailedFormation(const Message& message) {
  if (message.name != "P2P-GROUP-FORMATION-FAILURE") {
    return false;
  }
  if (const std::string reason = message.Field("reason"); !reason.empty()) {
    Fail("the group cannot be formed: " + reason);
  }
  return true;
}

// Sends a request. False: it is refused. Raises platform::Error when the refusal says why.
bool Request(const Supplicant& supplicant, const std::string& command) {
  constexpr std::string_view kReasonStart = "FAIL-";
  const std::string reply = supplicant.Ask(command);
  if (reply.starts_with(kReasonStart)) {
    Fail("wpa_supplicant refuses " + command.substr(0, command.find(' ')) + ": " +
         Lines(reply).front());
  }
  return reply.starts_with("OK");
}

// Whether the other side of the new group is the device, where it owns the group.
bool IsOwnedBy(const std::string& address, const Message& started) {
  return !IsOwnGroup(started) && started.Field("go_dev_addr") == address;
}

// Whether this machine owns the new group, and it is the stored one.
bool IsOwn(const StoredGroup& stored, const Supplicant& supplicant, const Message& started) {
  return IsOwnGroup(started) &&
         LineOf(supplicant.AskAbout(InterfaceOf(started), "STATUS"), "ssid") == stored.ssid;
}

// wpa_supplicant pairs and links only with devices that it has seen within the last minute.
bool Seek(Supplicant& supplicant, const std::string& address) {
  if (supplicant.Ask("P2P_PEER " + address).starts_with(address)) {
    return true;
  }
  Inbox inbox(supplicant);
  const auto findsWithin = [&](const char* find, std::uint32_t limitMs) {
    supplicant.Do(find);
    const auto deadline = After(limitMs);
    while (const auto message = inbox.Next(deadline)) {
      if (message->name == kFoundEvent && message->Field(kAddressField) == address) {
        return true;
      }
    }
    return false;
  };
  const bool found = findsWithin(kQuickFind, kQuickFindMs) || findsWithin(kWideFind, kSeekMs);
  supplicant.Do(kStopFind);
  return found;
}

// None of `answered`: the device did not answer. Whoever starts the group, a link with the device
// is what is wanted: it may invite this machine at the same moment.
std::optional<Link> InviteOnce(Supplicant& supplicant, Inbox& inbox, const std::string& address,
                               const StoredGroup& group, bool& answered) {
  if (!Request(supplicant, "P2P_INVITE persistent=" + group.id + " peer=" + address)) {
    return std::nullopt;
  }
  auto deadline = After(kInvitationMs);
  while (const auto message = inbox.Next(deadline)) {
    if (message->name == "P2P-INVITATION-RESULT") {
      answered = true;
      const std::string status = message->Field("status");
      if (status == kUnknownGroup) {
        Forget(supplicant, group);  // so that it is paired again
      }
      if (status != kAccepted) {
        return std::nullopt;
      }
      deadline = After(kGroupMs);
    } else if (IsFailedFormation(*message) || message->name == kGoneEvent) {
      return std::nullopt;
    } else if (IsGroupStart(*message) &&
               (IsOwnedBy(address, *message) || IsOwn(group, supplicant, *message))) {
      return AwaitLink(supplicant, inbox, *message, address);
    }
  }
  supplicant.Do("P2P_CANCEL");
  return std::nullopt;
}

// A device that is still in a group which a killed process has left answers no invitation.
void RemoveLeftOver(const Supplicant& supplicant, const StoredGroup& stored) {
  for (const Group& group : GroupsOf(supplicant)) {
    if (group.ssid == stored.ssid) {
      RemoveGroup(supplicant, group.interface);
    }
  }
}

}  // namespace

Negotiation Negotiate(Supplicant& supplicant, Inbox& inbox, const std::string& address,
                      int ownerIntent) {
  if (!Seek(supplicant, address)) {
    return {Status::AuthenticationTimeout};
  }
  if (!Request(supplicant, "P2P_CONNECT " + address +
                               " pbc persistent go_intent=" + std::to_string(ownerIntent))) {
    return {Status::Failed};
  }
  bool agreed = false;  // with this device: another one may start a group meanwhile
  const auto deadline = After(kNegotiationMs);
  while (const auto message = inbox.Next(deadline)) {
    if (message->name == "P2P-GO-NEG-FAILURE" || IsFailedFormation(*message)) {
      return {FailureOf(*message)};
    }
    if (message->name == kGoneEvent) {
      return {Status::HardwareFailure};
    }
    if (message->name == "P2P-GO-NEG-SUCCESS") {
      agreed = message->Field("peer_dev") == address;
    } else if (agreed && IsGroupStart(*message) &&
               (IsOwnGroup(*message) || IsOwnedBy(address, *message))) {
      const auto link = AwaitLink(supplicant, inbox, *message, address);
      return {link ? Status::Paired : Status::Failed, link};
    }
  }
  supplicant.Do("P2P_CANCEL");
  return {Status::AuthenticationTimeout};
}

std::optional<Link> Invite(Supplicant& supplicant, Inbox& inbox, const std::string& address) {
  const auto group = StoredGroupWith(supplicant, address);
  if (!group) {
    return std::nullopt;
  }
  RemoveLeftOver(supplicant, *group);
  if (!Seek(supplicant, address)) {
    return std::nullopt;
  }
  std::optional<Link> link;
  bool answered = false;
  // wpa_supplicant does not reach a device that begins to listen after it was invited: such a one,
  // which has just left a link, takes the next invitation.
  for (int tries = 0; tries < kInvitations && !answered && !link; ++tries) {
    link = InviteOnce(supplicant, inbox, address, *group, answered);
  }
  return link;
}

bool IsEndOf(const Link& link, const Message& message) {
  return message.name == kGoneEvent ||
         (message.name == "P2P-GROUP-REMOVED" && message.Word(0) == link.interface) ||
         (message.name == "AP-STA-DISCONNECTED" && message.Field(kAddressField) == link.peer);
}

}  // namespace lanvoss::wpa
