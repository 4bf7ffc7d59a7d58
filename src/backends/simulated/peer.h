// What the simulated air consists of: its devices, and the habits of its platform.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "backends/events/delayed_actions.h"
#include "platform/wifi_direct.h"

namespace lanvoss::simulated {

// As a duration: it does not happen.
using events::kNever;

// As a count: it is never reached.
inline constexpr std::uint32_t kUnlimited = 0xFFFFFFFF;

// Longer than anybody waits for an echo.
inline constexpr std::uint32_t kLateMs = 3'100;

// How a pairing or an open request ends.
enum class Outcome {
  kSucceeds,
  kNone,       // an open request returns no device; a pairing ends as NotPaired
  kFails,      // raises a platform error
  kCancelled,  // raises the platform's cancellation
  kHangs,      // does not end before Air::ReleaseHangs, and then as cancelled
};

// What comes back for an echo request.
enum class Echo {
  kReply,
  kLateReply,         // the reply, kLateMs after it would be in time
  kOtherIdentifier,   // another process's reply
  kOtherSequence,     // the reply to an earlier try
  kOtherAddress,      // a reply from another device
  kTimeExceeded,      // the request quoted, from a router
  kTimeExceededSelf,  // the request quoted, from the device itself
  kTimeExceededCut,   // the quote ends before the request's numbers
  kTruncated,         // shorter than its headers
  kUnrelated,         // another ICMP type
  kTooLong,           // longer than what the probe receives into
};

enum class Act {
  kAppear,
  kDisappear,
  kRename,
  kGoSilent,  // the link stays up, echoes are no longer answered
  kAnswer,    // echoes are answered again
  kDropLink,  // the device takes its links down
};

struct ScriptStep {
  std::uint32_t atMs = 0;  // counted from when the device was added
  Act act = Act::kAppear;
  std::u16string newName = {};  // of kRename
};

// The addresses of an endpoint pair; none: that endpoint has no host name.
struct AddressPair {
  std::optional<std::u16string> local = {};
  std::optional<std::u16string> remote = {};
};

struct Peer {
  std::u16string name;
  // Unique; ends in the hardware address. Empty: the air makes one.
  std::u16string id = {};
  bool present = true;
  bool paired = false;
  bool hasPairingObject = true;
  std::uint32_t namelessReports = 0;  // so many come without its name

  // The addresses of a link to it.
  std::optional<std::u16string> localAddress = u"192.168.49.1";
  std::optional<std::u16string> remoteAddress = u"192.168.49.20";
  // Instead of this one pair, all that a link has, the first one first.
  std::optional<std::vector<AddressPair>> endpointPairs = {};

  // Latencies in milliseconds.
  std::uint32_t appearMs = 300;  // from the start of a pass, or its appearing, to its report
  std::uint32_t pairMs = 800;
  std::uint32_t openMs = 400;
  std::uint32_t endpointPairsMs = 0;  // from the opening until the link has its pairs
  std::uint32_t closeMs = 40;
  std::uint32_t unpairMs = 60;

  // One for each pairing and each open request in turn; after the last one all succeed. An
  // open request to a device that is absent or not paired always gives none.
  std::vector<Outcome> pairings = {};
  std::vector<Outcome> openings = {};
  // After so many links it has forgotten the pairing: an open request raises this error until the
  // device is unpaired and paired again.
  std::uint32_t linksPerPairing = kUnlimited;
  std::uint32_t openError = platform::kErrorNotFound;
  // What a pairing that succeeds reports, and the ceremony that the device asks for.
  platform::DevicePairingResultStatus pairingStatus = platform::DevicePairingResultStatus::Paired;
  platform::DevicePairingKinds ceremony = platform::DevicePairingKinds::ConfirmOnly;

  // Echo requests while a link to it is up: the messages that come back for each in turn, none for
  // an empty list. After the last list it answers this share of the requests, 0 to 1.
  std::vector<std::vector<Echo>> echoes = {};
  double echoShare = 1.0;
  std::uint32_t echoMs = 8;  // from a request to the message that comes back

  std::vector<ScriptStep> script = {};
};

// The endpoint pairs of a link to it.
inline std::vector<AddressPair> EndpointPairsOf(const Peer& peer) {
  return peer.endpointPairs.value_or(
      std::vector<AddressPair>{{peer.localAddress, peer.remoteAddress}});
}

// Ids that are the same in capitals are of the same device.
inline std::u16string InCapitals(std::u16string id) {
  for (char16_t& letter : id) {
    letter =
        letter >= u'a' && letter <= u'z' ? static_cast<char16_t>(letter - u'a' + u'A') : letter;
  }
  return id;
}

// What becomes of an open link that is closed, unpaired or dropped.
enum class LinkEnd {
  kReported,         // it goes down, and Disconnected is raised
  kRepeated,         // it goes down, and Disconnected is raised twice
  kSilent,           // it goes down, and nothing is raised
  kStaysUp,          // it stays up, and nothing is raised
  kStaysUpReported,  // it stays up, and a change to Connected is raised
};

enum class StopElsewhere { kIgnored, kRefused };

// Where platforms differ. Durations in milliseconds.
struct Habits {
  std::uint32_t ignoredStarts = 0;     // calls of Start without effect before one has it
  std::uint32_t enumerationMs = 2000;  // from Started to EnumerationCompleted
  std::uint32_t findMs = kNever;       // from Started to the last report of a device in the pass
  std::uint32_t stopMs = 30;           // from Stop to the status Stopped
  std::uint32_t statusReportMs = 10;   // from a link's change to the event that reports it
  // What Stop does in any status but Started and EnumerationCompleted.
  StopElsewhere stopElsewhere = StopElsewhere::kIgnored;
  // Events of one object come one after the other, or each on a thread of its own.
  bool handlersOverlap = false;
  bool stoppedReported = true;
  // A watcher stays in Stopping until the handlers of its events have returned.
  bool stopWaitsForHandlers = true;
  // Stopped is raised for a watcher that ends as Aborted.
  bool abortedReported = false;
  // A device that is paired is reported although it is not present.
  bool absentReported = false;
  // Every second report of a device has its id in capitals.
  bool idsVary = false;
  // Whether a device is paired is said as it was when the device was reported.
  bool pairedAsReported = false;
  LinkEnd onClose = LinkEnd::kReported;
  LinkEnd onUnpair = LinkEnd::kReported;
  LinkEnd onDrop = LinkEnd::kReported;
  // Two that a backend hides from the library, so only the fake of the Windows Runtime has them.
  // The status of a link that was closed cannot be read; otherwise it says what became of the link.
  bool closedStatusRaises = false;
  // An operation that gives none ends as an error without a code.
  bool noResultIsError = false;
  // Whether echo requests go to the simulated devices, or to the machine's network.
  bool simulatesEcho = true;
};

}  // namespace lanvoss::simulated
