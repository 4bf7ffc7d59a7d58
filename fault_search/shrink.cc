#include "shrink.h"

#include <cstddef>
#include <utility>

#include "player.h"

namespace lanvoss::search {
namespace {

bool StillFails(const Story& story, bool free) { return !Play(story, free).violations.empty(); }

// Tries the story without each element of one of its parts, but for the first `kept` of them.
// `part(story)` is the part.
template <typename Part>
bool ShrinkPart(Story& story, bool free, std::size_t kept, Part part) {
  bool shrunk = false;
  for (std::size_t i = part(story).size(); i-- > kept;) {
    Story shorter = story;
    part(shorter).erase(part(shorter).begin() + static_cast<std::ptrdiff_t>(i));
    if (StillFails(shorter, free)) {
      story = std::move(shorter);
      shrunk = true;
    }
  }
  return shrunk;
}

bool ShrinkOnce(Story& story, bool free) {
  bool shrunk = false;
  const auto shrink = [&](std::size_t kept, auto part) {
    shrunk = ShrinkPart(story, free, kept, part) || shrunk;
  };
  shrink(
      0, [](Story & each) -> auto& { return each.faults; });
  shrink(
      0, [](Story & each) -> auto& { return each.reactions; });
  shrink(
      0, [](Story & each) -> auto& { return each.hosts; });
  shrink(
      1, [](Story & each) -> auto& { return each.peers; });
  for (std::size_t host = 0; host < story.hosts.size(); ++host) {
    shrink(
        0, [host](Story & each) -> auto& { return each.hosts[host]; });
  }
  for (std::size_t peer = 0; peer < story.peers.size(); ++peer) {
    shrink(
        0, [peer](Story & each) -> auto& { return each.peers[peer].script; });
    shrink(
        0, [peer](Story & each) -> auto& { return each.peers[peer].openings; });
    shrink(
        0, [peer](Story & each) -> auto& { return each.peers[peer].pairings; });
  }
  Story ordinary = story;
  ordinary.habits = {};
  if (Tell(ordinary) != Tell(story) && StillFails(ordinary, free)) {
    story = std::move(ordinary);
    shrunk = true;
  }
  return shrunk;
}

}  // namespace

Story Shrink(Story story, bool free) {
  while (ShrinkOnce(story, free)) {
  }
  return story;
}

}  // namespace lanvoss::search
