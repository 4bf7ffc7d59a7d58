// The text of a case.
#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "test_case.h"

namespace lanvoss::search {
namespace {

using simulated::Act;
using simulated::Failure;
using simulated::Outcome;

constexpr std::array kCallNames = {"GetDeviceSelector",
                                   "CreateWatcher",
                                   "CreateConnectionParameters",
                                   "FromIdAsync",
                                   "watcher Status",
                                   "watcher Start",
                                   "watcher Stop",
                                   "watcher subscribe",
                                   "watcher revoke",
                                   "information Id",
                                   "information Name",
                                   "information Pairing",
                                   "update Id",
                                   "IsPaired",
                                   "Custom",
                                   "UnpairAsync",
                                   "GroupOwnerIntent",
                                   "PreferredPairingProcedure",
                                   "PairingRequested subscribe",
                                   "PairAsync",
                                   "pairing Status",
                                   "PairingKind",
                                   "GetDeferral",
                                   "Accept",
                                   "ConnectionStatus",
                                   "ConnectionStatusChanged subscribe",
                                   "GetConnectionEndpointPairs",
                                   "endpoint pair GetAt",
                                   "LocalHostName or RemoteHostName",
                                   "DisplayName",
                                   "device Close",
                                   "opening of an ICMP socket",
                                   "opening of a file"};
static_assert(kCallNames.size() == simulated::kCalls);

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char byte : text) {
    quoted += byte == '\n' ? std::string("\\n") : std::string(1, byte);
  }
  return quoted + "\"";
}

std::string KindName(Failure::Kind kind) {
  switch (kind) {
    case Failure::Kind::kError:
      return "raises the platform's error";
    case Failure::Kind::kCancelled:
      return "raises the platform's cancellation";
    case Failure::Kind::kOther:
      return "raises another exception";
    case Failure::Kind::kNone:
      return "gives none";
  }
  return {};
}

std::string Describe(const PlannedFault& fault) {
  return std::string("fault: ") + kCallNames[static_cast<std::size_t>(fault.call)] + " " +
         (fault.delayMs > 0 ? "is " + std::to_string(fault.delayMs) + " ms late"
                            : KindName(fault.failure.kind)) +
         ", share " + std::to_string(fault.share);
}

std::string Describe(const std::vector<Outcome>& outcomes, const std::string& what) {
  constexpr std::array kNames = {"succeeds", "gives none", "fails", "is cancelled", "hangs"};
  std::string text;
  for (const Outcome outcome : outcomes) {
    text += ", " + what + " " + kNames[static_cast<std::size_t>(outcome)];
  }
  return text;
}

std::string Describe(const simulated::ScriptStep& step) {
  constexpr std::array kActs = {"appears",     "disappears",    "is renamed",
                                "goes silent", "answers again", "drops its links"};
  return "; at " + std::to_string(step.atMs) + " ms " + kActs[static_cast<std::size_t>(step.act)] +
         (step.act == Act::kRename ? " " + platform::Utf16ToUtf8(step.newName) : "");
}

// With a number that the case has unless it is `usual`.
std::string Unless(std::uint32_t usual, std::uint32_t number, const std::string& what) {
  return number == usual ? std::string() : ", " + what + " " + std::to_string(number);
}

std::string Describe(const simulated::Peer& peer) {
  std::string text =
      "device " + platform::Utf16ToUtf8(peer.name) + " " + platform::Utf16ToUtf8(peer.id) +
      (peer.present ? "" : ", absent") + (peer.paired ? ", paired" : "") + ", appears " +
      std::to_string(peer.appearMs) + " pairs " + std::to_string(peer.pairMs) + " opens " +
      std::to_string(peer.openMs) + " ms, answers a share of " + std::to_string(peer.echoShare) +
      (peer.endpointPairs ? ", endpoint pairs " + std::to_string(peer.endpointPairs->size()) : "") +
      Unless(0, peer.endpointPairsMs, "after ms") +
      Unless(0, peer.namelessReports, "reports without a name") +
      Unless(simulated::kUnlimited, peer.linksPerPairing, "links of a pairing") +
      Describe(peer.pairings, "a pairing") + Describe(peer.openings, "an opening");
  for (const simulated::ScriptStep& step : peer.script) {
    text += Describe(step);
  }
  return text;
}

std::string Describe(const Reaction& reaction) {
  const std::string at = "at notification " + std::to_string(reaction.nth) + " the host ";
  switch (reaction.kind) {
    case Reaction::Kind::kOperation:
      return at + "calls " + Describe(reaction.step);
    case Reaction::Kind::kLetGo:
      return at + "lets go";
    case Reaction::Kind::kThrow:
      return at + "throws";
    case Reaction::Kind::kLetGoAndThrow:
      return at + "lets go and throws";
  }
  return {};
}

std::string Describe(const simulated::Habits& habits) {
  const auto number = [](auto value) { return std::to_string(static_cast<std::uint32_t>(value)); };
  return "platform: ignored starts " + number(habits.ignoredStarts) + ", enumeration " +
         number(habits.enumerationMs) + " ms" +
         Unless(simulated::kNever, habits.findMs, "finds until ms") + ", stop " +
         number(habits.stopMs) + " ms, status report " + number(habits.statusReportMs) +
         " ms, stop elsewhere " + number(habits.stopElsewhere) + ", overlap " +
         number(habits.handlersOverlap) + ", stopped reported " + number(habits.stoppedReported) +
         " after handlers " + number(habits.stopWaitsForHandlers) + ", aborted reported " +
         number(habits.abortedReported) + ", absent reported " + number(habits.absentReported) +
         ", ids vary " + number(habits.idsVary) + ", paired as reported " +
         number(habits.pairedAsReported) + ", link ends close " + number(habits.onClose) +
         " unpair " + number(habits.onUnpair) + " drop " + number(habits.onDrop);
}

}  // namespace

std::string Describe(const Step& step) {
  constexpr std::array kNames = {"StartWatch", "StopWatch", "GetDeviceIp", "AbortConnect",
                                 "DisConnect", "Unpair",    "PingCheck"};
  return std::string(kNames[static_cast<std::size_t>(step.operation)]) + "(" +
         Quoted(step.argument) + ")";
}

std::vector<std::string> Describe(const TestCase& testCase) {
  std::vector<std::string> lines = {Describe(testCase.habits)};
  const auto tellAll = [&lines](const auto& parts) {
    std::transform(parts.begin(), parts.end(), std::back_inserter(lines),
                   [](const auto& part) { return Describe(part); });
  };
  for (const std::uint32_t atMs : testCase.abortsAtMs) {
    lines.push_back("at " + std::to_string(atMs) + " ms the platform ends a running watcher");
  }
  tellAll(testCase.peers);
  tellAll(testCase.faults);
  for (std::size_t host = 0; host < testCase.hosts.size(); ++host) {
    for (const Step& step : testCase.hosts[host]) {
      lines.push_back("host " + std::to_string(host + 1) + " after " +
                      std::to_string(step.pauseMs) + " ms: " + Describe(step));
    }
  }
  tellAll(testCase.reactions);
  if (!testCase.cache.empty()) {
    lines.push_back("the cache knows Cam");
  }
  if (testCase.bare) {
    lines.push_back("operations run on the bare object");
  }
  return lines;
}

}  // namespace lanvoss::search
