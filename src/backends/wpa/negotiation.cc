#include "backends/wpa/negotiation.h"

#include "backends/wpa/credentials.h"
#include "backends/wpa/finder.h"
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

bool IsFailedFormation(const Message& message) {
  return message.name == "P2P-GROUP-FORMATION-FAILURE";
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

// wpa_supplicant does not reach a device that begins to listen after it was invited: such a one,
// which has just left a link, takes the next invitation.
std::optional<Link> InviteOnce(Supplicant& supplicant, Inbox& inbox, const std::string& address,
                               const std::string& group, bool& answered) {
  if (!supplicant.Do("P2P_INVITE persistent=" + group + " peer=" + address)) {
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
    } else if (IsGroupStart(*message)) {
      return AwaitLink(supplicant, inbox, *message, address);
    }
  }
  supplicant.Do("P2P_CANCEL");
  return std::nullopt;
}

}  // namespace

Negotiation Negotiate(Supplicant& supplicant, Inbox& inbox, const std::string& address,
                      int ownerIntent) {
  if (!Seek(supplicant, address)) {
    return {Status::AuthenticationTimeout};
  }
  if (!supplicant.Do("P2P_CONNECT " + address +
                     " pbc persistent go_intent=" + std::to_string(ownerIntent))) {
    return {Status::Failed};
  }
  const auto deadline = After(kNegotiationMs);
  while (const auto message = inbox.Next(deadline)) {
    if (message->name == "P2P-GO-NEG-FAILURE" || IsFailedFormation(*message)) {
      return {FailureOf(*message)};
    }
    if (message->name == kGoneEvent) {
      return {Status::HardwareFailure};
    }
    if (IsGroupStart(*message)) {
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
  for (int tries = 0; tries < kInvitations && !answered; ++tries) {
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
