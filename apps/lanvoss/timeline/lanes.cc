#include "timeline/lanes.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace lanvoss::program {
namespace {

// Threads from the first ones on that have lanes of their own; the others share one.
constexpr int kThreadLanes = 16;

// Where a lane stands, from above, and what makes two things share one.
using Key = std::pair<int, int>;

Key KeyOf(Part part, int thread) {
  if (thread == 0 || HasItsOwnLane(part)) {
    return {static_cast<int>(part) + 1, 0};
  }
  return {0, std::min(thread, kThreadLanes + 1)};
}

std::string PartName(Part part) {
  switch (part) {
    case Part::kHost:
      return "host";
    case Part::kConnection:
      return "connection";
    case Part::kCheck:
      return "link check";
    case Part::kWatcher:
      return "watcher";
    case Part::kLink:
      return "link";
  }
  return {};
}

std::string LabelOf(const Key& key, const std::set<int>& platformThreads) {
  const auto& [place, thread] = key;
  if (place > 0) {
    return PartName(static_cast<Part>(place - 1));
  }
  if (thread > kThreadLanes) {
    return "other threads";
  }
  return (platformThreads.contains(thread) ? "platform thread " : "host thread ") +
         std::to_string(thread);
}

// Puts the spans of one lane into as few tracks as nesting allows, and nested ones into rows below
// each other. Spans come by their begins, the longer first.
class Stacks {
 public:
  void Place(Span& span) {
    std::size_t track = 0;
    while (track < tracks_.size() && !Fits(tracks_[track], span)) {
      ++track;
    }
    if (track == tracks_.size()) {
      tracks_.emplace_back();
    }
    Track& home = tracks_[track];
    span.track = track;
    span.row = home.ends.size();
    home.ends.push_back(span.endUs);
    home.rows = std::max(home.rows, home.ends.size());
  }

  // The rows of the tracks before this one, or of all.
  std::size_t RowsBefore(std::size_t track) const {
    std::size_t rows = 0;
    for (std::size_t i = 0; i < track && i < tracks_.size(); ++i) {
      rows += tracks_[i].rows;
    }
    return rows;
  }
  std::size_t Rows() const { return RowsBefore(tracks_.size()); }

 private:
  struct Track {
    std::vector<std::int64_t> ends;  // of the spans that are not over, the outermost first
    std::size_t rows = 0;
  };

  static bool Fits(Track& track, const Span& span) {
    while (!track.ends.empty() && track.ends.back() <= span.beginUs) {
      track.ends.pop_back();
    }
    return track.ends.empty() || span.endUs <= track.ends.back();
  }

  std::vector<Track> tracks_;
};

std::set<int> PlatformThreads(const std::vector<Event>& events) {
  std::set<int> threads;
  for (const Event& event : events) {
    if (event.byPlatform) {
      threads.insert(event.thread);
    }
  }
  return threads;
}

}  // namespace

bool HasItsOwnLane(Part part) { return part == Part::kWatcher || part == Part::kLink; }

void AssignLanes(Timeline& timeline) {
  std::ranges::stable_sort(timeline.spans, {}, [](const Span& span) {
    return std::tuple(span.beginUs, -span.endUs, span.activity);
  });
  std::map<Key, std::size_t> lanes;
  for (const Span& span : timeline.spans) {
    lanes[KeyOf(span.part, span.thread)];
  }
  for (const Mark& mark : timeline.marks) {
    lanes[KeyOf(mark.part, mark.thread)];
  }
  const std::set<int> platformThreads = PlatformThreads(timeline.events);
  for (auto& [key, lane] : lanes) {
    lane = timeline.lanes.size();
    timeline.lanes.push_back({LabelOf(key, platformThreads)});
  }
  std::vector<Stacks> stacks(timeline.lanes.size());
  for (Span& span : timeline.spans) {
    span.lane = lanes[KeyOf(span.part, span.thread)];
    stacks[span.lane].Place(span);
  }
  for (Span& span : timeline.spans) {
    span.row += stacks[span.lane].RowsBefore(span.track);
  }
  for (Mark& mark : timeline.marks) {
    mark.lane = lanes[KeyOf(mark.part, mark.thread)];
  }
  for (std::size_t i = 0; i < stacks.size(); ++i) {
    timeline.lanes[i].rows = stacks[i].Rows();
  }
}

}  // namespace lanvoss::program
