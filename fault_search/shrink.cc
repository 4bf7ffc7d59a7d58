#include "shrink.h"

#include <cstddef>
#include <utility>

#include "player.h"

namespace lanvoss::search {
namespace {

bool StillFails(const TestCase& testCase, bool free) {
  return !Play(testCase, free).violations.empty();
}

// Tries the case without each element of one of its parts, except the first `kept` of them.
// `part(testCase)` is the part.
template <typename Part>
bool ShrinkPart(TestCase& testCase, bool free, std::size_t kept, Part part) {
  bool shrunk = false;
  for (std::size_t i = part(testCase).size(); i-- > kept;) {
    TestCase shorter = testCase;
    part(shorter).erase(part(shorter).begin() + static_cast<std::ptrdiff_t>(i));
    if (StillFails(shorter, free)) {
      testCase = std::move(shorter);
      shrunk = true;
    }
  }
  return shrunk;
}

// Tries the case with a usual value in one of its fields.
template <typename Field, typename Value>
bool Reset(TestCase& testCase, bool free, Field field, const Value& usual) {
  TestCase plainer = testCase;
  field(plainer) = usual;
  if (Describe(plainer) == Describe(testCase) || !StillFails(plainer, free)) {
    return false;
  }
  testCase = std::move(plainer);
  return true;
}

// The same with each of these members of a part.
template <typename Whole, typename Part, typename... Members>
bool ResetMembers(TestCase& testCase, bool free, Part part, Members Whole::*... members) {
  const Whole usual{};
  bool shrunk = false;
  const auto reset = [&](auto member) {
    const auto field = [&](TestCase & each) -> auto& { return part(each).*member; };
    shrunk = Reset(testCase, free, field, usual.*member) || shrunk;
  };
  (reset(members), ...);
  return shrunk;
}

bool ResetHabits(TestCase& testCase, bool free) {
  using simulated::Habits;
  using simulated::Peer;
  const auto habits = [](TestCase & each) -> auto& { return each.habits; };
  bool shrunk = Reset(testCase, free, habits, Habits());
  shrunk |= ResetMembers(testCase, free, habits, &Habits::ignoredStarts, &Habits::enumerationMs,
                         &Habits::findMs, &Habits::stopMs, &Habits::statusReportMs,
                         &Habits::stopElsewhere, &Habits::handlersOverlap, &Habits::stoppedReported,
                         &Habits::stopWaitsForHandlers, &Habits::abortedReported,
                         &Habits::absentReported, &Habits::idsVary, &Habits::pairedAsReported,
                         &Habits::onClose, &Habits::onUnpair, &Habits::onDrop);
  for (std::size_t i = 0; i < testCase.peers.size(); ++i) {
    const auto peer = [i](TestCase & each) -> auto& { return each.peers[i]; };
    shrunk |= ResetMembers(testCase, free, peer, &Peer::namelessReports, &Peer::endpointPairs,
                           &Peer::endpointPairsMs, &Peer::linksPerPairing);
  }
  return shrunk;
}

bool ShrinkOnce(TestCase& testCase, bool free) {
  bool shrunk = false;
  const auto shrink = [&](std::size_t kept, auto part) {
    shrunk = ShrinkPart(testCase, free, kept, part) || shrunk;
  };
  shrink(
      0, [](TestCase & each) -> auto& { return each.faults; });
  shrink(
      0, [](TestCase & each) -> auto& { return each.reactions; });
  shrink(
      0, [](TestCase & each) -> auto& { return each.hosts; });
  shrink(
      1, [](TestCase & each) -> auto& { return each.peers; });
  for (std::size_t host = 0; host < testCase.hosts.size(); ++host) {
    shrink(
        0, [host](TestCase & each) -> auto& { return each.hosts[host]; });
  }
  for (std::size_t peer = 0; peer < testCase.peers.size(); ++peer) {
    shrink(
        0, [peer](TestCase & each) -> auto& { return each.peers[peer].script; });
    shrink(
        0, [peer](TestCase & each) -> auto& { return each.peers[peer].openings; });
    shrink(
        0, [peer](TestCase & each) -> auto& { return each.peers[peer].pairings; });
  }
  shrink(
      0, [](TestCase & each) -> auto& { return each.abortsAtMs; });
  return ResetHabits(testCase, free) || shrunk;
}

}  // namespace

TestCase Shrink(TestCase testCase, bool free) {
  while (ShrinkOnce(testCase, free)) {
  }
  return testCase;
}

}  // namespace lanvoss::search
