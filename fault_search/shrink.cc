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
  TestCase ordinary = testCase;
  ordinary.habits = {};
  if (Describe(ordinary) != Describe(testCase) && StillFails(ordinary, free)) {
    testCase = std::move(ordinary);
    shrunk = true;
  }
  return shrunk;
}

}  // namespace

TestCase Shrink(TestCase testCase, bool free) {
  while (ShrinkOnce(testCase, free)) {
  }
  return testCase;
}

}  // namespace lanvoss::search
