#include "test_case.h"

#include <algorithm>
#include <initializer_list>
#include <random>

namespace lanvoss::search {
namespace {

using simulated::Act;
using simulated::Call;
using simulated::Failure;
using simulated::LinkEnd;
using simulated::Outcome;

// Some come when nothing fails any more, and cost a request.
constexpr std::uint32_t kLastAbortMs = kScriptsEndMs + 20'000;

// What is thrown for a case, in a fixed order.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : random_(seed) {}

  bool Chance(double probability) {
    return std::generate_canonical<double, 32>(random_) < probability;
  }
  std::uint32_t Between(std::uint32_t least, std::uint32_t most) {
    return least + static_cast<std::uint32_t>(random_() % (most - least + 1));
  }
  template <typename Value>
  Value Pick(std::initializer_list<Value> values) {
    return *(values.begin() + Between(0, static_cast<std::uint32_t>(values.size()) - 1));
  }

 private:
  std::mt19937_64 random_;
};

std::string NameOf(Dice& dice) {
  return dice.Pick<std::string>({"Cam", "Cam", "Cam", "Cam2", "B\xC3\xBCro", "A|B", "Nobody"});
}

std::u16string Digit(std::size_t number) {
  return std::u16string(1, static_cast<char16_t>(u'0' + number));
}

std::uint32_t PauseOf(Dice& dice) {
  return dice.Pick<std::uint32_t>(
      {0, 0, dice.Between(0, 50), dice.Between(0, 3'000), dice.Between(0, 20'000)});
}

Step GenerateStep(Dice& dice) {
  const auto operation =
      static_cast<Operation>(dice.Pick<int>({0, 1, 2, 2, 2, 2, 3, 4, 4, 5, 6, 6}));
  Step step{.pauseMs = PauseOf(dice), .operation = operation};
  const std::string name = NameOf(dice);
  switch (operation) {
    case Operation::kStartWatch:
      step.argument = dice.Pick<std::string>({"", name, "\n" + name});
      break;
    case Operation::kGetDeviceIp:
      step.argument = dice.Pick<std::string>({name, name, "\n" + name, "3000\n" + name, ""});
      break;
    case Operation::kUnpair:
      step.argument = name;
      break;
    case Operation::kStopWatch:
    case Operation::kAbortConnect:
    case Operation::kDisConnect:
    case Operation::kPingCheck:
      break;
  }
  return step;
}

std::vector<simulated::ScriptStep> GenerateScript(Dice& dice) {
  std::vector<simulated::ScriptStep> script;
  for (std::uint32_t i = dice.Pick<std::uint32_t>({0, 0, 1, 3, 6}); i > 0; --i) {
    const Act act = dice.Pick({Act::kAppear, Act::kDisappear, Act::kRename, Act::kGoSilent,
                               Act::kGoSilent, Act::kAnswer, Act::kDropLink, Act::kDropLink});
    script.push_back({.atMs = dice.Between(0, kScriptsEndMs - 10'000),
                      .act = act,
                      .newName = dice.Pick<std::u16string>({u"Cam", u"Cam2", u"Other"})});
  }
  std::sort(script.begin(), script.end(),
            [](const auto& a, const auto& b) { return a.atMs < b.atMs; });
  return script;
}

simulated::Peer GeneratePeer(Dice& dice, std::size_t index) {
  simulated::Peer peer;
  peer.name =
      index == 0 ? u"Cam" : dice.Pick<std::u16string>({u"Cam", u"Cam2", u"B\u00fcro", u"A|B"});
  peer.id = u"P2P#02:00:00:00:00:0" + Digit(index);
  peer.present = dice.Chance(0.85);
  peer.paired = dice.Chance(0.4);
  // No radio finds at once; passes that took no time at all would never end on virtual time.
  peer.appearMs = dice.Between(50, 1'500);
  peer.pairMs = dice.Between(0, kLongestLatencyMs);
  peer.openMs = dice.Between(0, kLongestLatencyMs);
  peer.closeMs = dice.Between(0, 300);
  peer.unpairMs = dice.Between(0, 300);
  peer.script = GenerateScript(dice);
  if (index == 0) {
    return peer;
  }
  peer.remoteAddress = u"192.168.49.3" + Digit(index);
  peer.hasPairingObject = dice.Chance(0.9);
  if (!dice.Chance(0.9)) {
    peer.endpointPairs.emplace();
  }
  if (dice.Chance(0.1)) {
    peer.remoteAddress.reset();
  }
  for (std::uint32_t i = dice.Between(0, 3); i > 0; --i) {
    peer.openings.push_back(dice.Pick({Outcome::kSucceeds, Outcome::kNone, Outcome::kFails,
                                       Outcome::kCancelled, Outcome::kHangs}));
    peer.pairings.push_back(dice.Pick({Outcome::kSucceeds, Outcome::kSucceeds, Outcome::kNone,
                                       Outcome::kFails, Outcome::kCancelled, Outcome::kHangs}));
  }
  peer.pairingStatus = dice.Pick({platform::DevicePairingResultStatus::Paired,
                                  platform::DevicePairingResultStatus::Failed,
                                  platform::DevicePairingResultStatus::AuthenticationTimeout});
  peer.ceremony = dice.Pick({platform::DevicePairingKinds::ConfirmOnly,
                             platform::DevicePairingKinds::DisplayPin,
                             platform::DevicePairingKinds::ProvidePin});
  peer.echoShare = dice.Pick({0.0, 0.5, 1.0});
  return peer;
}

LinkEnd GenerateLinkEnd(Dice& dice) {
  return dice.Pick({LinkEnd::kReported, LinkEnd::kReported, LinkEnd::kRepeated, LinkEnd::kSilent,
                    LinkEnd::kStaysUp, LinkEnd::kStaysUpReported});
}

simulated::Habits GenerateHabits(Dice& dice) {
  simulated::Habits habits;
  habits.ignoredStarts = dice.Pick<std::uint32_t>({0, 0, 0, 2, 200});
  habits.enumerationMs =
      dice.Pick<std::uint32_t>({2'000, dice.Between(1, 500), 8'000, simulated::kNever});
  habits.stopMs = dice.Pick<std::uint32_t>({30, 0, 1'500, 2'500, 20'000});
  habits.statusReportMs = dice.Pick<std::uint32_t>({10, 0, 3'000});
  habits.stopElsewhere =
      dice.Pick({simulated::StopElsewhere::kIgnored, simulated::StopElsewhere::kRefused});
  habits.handlersOverlap = dice.Chance(0.3);
  habits.stoppedReported = dice.Chance(0.9);
  habits.onClose = GenerateLinkEnd(dice);
  habits.onUnpair = GenerateLinkEnd(dice);
  habits.onDrop = GenerateLinkEnd(dice);
  return habits;
}

PlannedFault GenerateFault(Dice& dice, Call call) {
  PlannedFault fault{.call = call, .share = dice.Pick({0.03, 0.2, 0.5, 1.0})};
  if (dice.Chance(0.3)) {
    fault.delayMs = dice.Between(1, kLongestDelayMs);
  } else if (call == Call::kOpenIcmpSocket || call == Call::kOpenFile) {
    fault.failure.kind = Failure::Kind::kNone;
  } else {
    fault.failure.kind =
        dice.Pick({Failure::Kind::kError, Failure::Kind::kError, Failure::Kind::kCancelled,
                   Failure::Kind::kNone, Failure::Kind::kNone, Failure::Kind::kOther});
  }
  return fault;
}

Reaction GenerateReaction(Dice& dice) {
  using Kind = Reaction::Kind;
  return {.nth = dice.Between(1, 60),
          .kind = dice.Pick({Kind::kOperation, Kind::kOperation, Kind::kLetGo, Kind::kThrow,
                             Kind::kLetGoAndThrow}),
          .step = GenerateStep(dice)};
}

void AddFieldHabits(Dice& dice, simulated::Peer& peer, bool isWanted) {
  peer.namelessReports = dice.Pick<std::uint32_t>({0, 0, 1, 2});
  if (dice.Chance(0.3) && !peer.endpointPairs) {
    peer.endpointPairs = {{u"fe80::1", u"fe80::2"}, {peer.localAddress, peer.remoteAddress}};
  }
  if (dice.Chance(0.3)) {
    peer.linksPerPairing = dice.Between(1, 2);
    peer.openError = dice.Pick({platform::kErrorNotFound, platform::kErrorFail});
  }
  // No request gets the addresses of such a device.
  if (dice.Chance(0.3) && !isWanted) {
    peer.endpointPairsMs = dice.Between(1, 3'000);
  }
}

// What platforms in the field do besides. It is added last, so that the rest of a case stays what
// its seed has always given.
void AddFieldHabits(Dice& dice, TestCase& testCase) {
  simulated::Habits& habits = testCase.habits;
  habits.stopWaitsForHandlers = dice.Chance(0.8);
  if (dice.Chance(0.4)) {
    return;
  }
  habits.abortedReported = dice.Chance(0.3);
  habits.absentReported = dice.Chance(0.3);
  habits.idsVary = dice.Chance(0.3);
  habits.pairedAsReported = dice.Chance(0.3);
  if (dice.Chance(0.3)) {
    habits.findMs = dice.Between(2'000, 6'000);
    habits.enumerationMs = kLongPassMs;
  }
  for (std::uint32_t i = dice.Pick<std::uint32_t>({0, 0, 1, 3}); i > 0; --i) {
    testCase.abortsAtMs.push_back(dice.Between(0, kLastAbortMs));
  }
  for (simulated::Peer& peer : testCase.peers) {
    AddFieldHabits(dice, peer, &peer == &testCase.peers.front());
  }
}

}  // namespace

TestCase GenerateCase(std::uint64_t seed) {
  Dice dice(seed);
  TestCase testCase{.seed = seed, .habits = GenerateHabits(dice)};
  const std::size_t peers = dice.Between(1, 4);
  for (std::size_t i = 0; i < peers; ++i) {
    testCase.peers.push_back(GeneratePeer(dice, i));
  }
  if (dice.Chance(0.8)) {
    for (std::size_t call = 0; call < simulated::kCalls; ++call) {
      if (dice.Chance(0.1)) {
        testCase.faults.push_back(GenerateFault(dice, static_cast<Call>(call)));
      }
    }
  }
  for (std::uint32_t host = dice.Between(1, 3); host > 0; --host) {
    std::vector<Step>& steps = testCase.hosts.emplace_back();
    for (std::uint32_t step = dice.Between(1, 6); step > 0; --step) {
      steps.push_back(GenerateStep(dice));
    }
  }
  for (std::uint32_t i = dice.Pick<std::uint32_t>({0, 0, 1, 3}); i > 0; --i) {
    testCase.reactions.push_back(GenerateReaction(dice));
  }
  if (dice.Chance(0.3)) {
    testCase.cache = "1|P2P#02:00:00:00:00:00|02:00:00:00:00:00|Cam|2024-03-01 08:00:00.000\n";
  }
  testCase.bare = dice.Chance(0.5);
  AddFieldHabits(dice, testCase);
  return testCase;
}

bool Hangs(const TestCase& testCase) {
  const auto hangs = [](const std::vector<Outcome>& outcomes) {
    return std::find(outcomes.begin(), outcomes.end(), Outcome::kHangs) != outcomes.end();
  };
  return std::any_of(
      testCase.peers.begin(), testCase.peers.end(),
      [&](const simulated::Peer& peer) { return hangs(peer.openings) || hangs(peer.pairings); });
}

}  // namespace lanvoss::search
