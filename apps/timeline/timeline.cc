#include "timeline/timeline.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "timeline/duration.h"
#include "timeline/timeline_builder.h"

namespace lanvoss::timeline {
namespace {

// Independent of its threads.
bool HasItsOwnLane(Part part) { return part == Part::kWatcher || part == Part::kLink; }

// Threads that write at once are stamped a little out of order. A stamp further back, or this far
// ahead, means that the clock was set.
constexpr std::int64_t kDisorderUs = kUsPerSecond;
constexpr std::int64_t kLongestSilenceUs = 2'592'000 * kUsPerSecond;  // 30 days

// Makes a time from the stamps that never goes backwards.
class Clock {
 public:
  std::int64_t Read(std::int64_t stampUs) {
    const std::int64_t passed = stampUs - latestStampUs_;
    if (!begun_ || passed < -kDisorderUs || passed > kLongestSilenceUs) {
      latestStampUs_ = stampUs;
      begun_ = true;
    } else if (passed > 0) {
      latestStampUs_ = stampUs;
      nowUs_ += passed;
    }
    return nowUs_;
  }

 private:
  bool begun_ = false;
  std::int64_t latestStampUs_ = 0;
  std::int64_t nowUs_ = 0;
};

Event EventOf(const Notification& notification, const LogLine& line, std::int64_t timeUs) {
  return {.timeUs = timeUs,
          .clockUs = notification.timeUs,
          .thread = notification.thread,
          .trouble = IsTrouble(line),
          .byPlatform = line.kind->traits.byPlatform,
          .kind = notification.kind,
          .words = WordsOf(line),
          .message = notification.message};
}

// A mark of its own in the picture, or the tick of a thread that wrote a line.
void AddMarks(const LogLine& line, const Event& event, std::vector<Mark>& marks) {
  Mark mark{.words = event.words,
            .timeUs = event.timeUs,
            .trouble = event.trouble,
            .part = line.kind->part,
            .thread = event.thread};
  const bool isMarked = !line.kind->traits.mark.empty();
  if (isMarked) {
    mark.label = MarkOf(line);
    marks.push_back(mark);
  }
  if (event.thread != 0 && (!isMarked || HasItsOwnLane(mark.part))) {
    mark.label.clear();
    mark.part = Part::kHost;
    marks.push_back(std::move(mark));
  }
}

// So many threads have lanes of their own; the others share one.
constexpr int kThreadLanes = 16;

// The place of a lane, from above. Things with the same key share a lane.
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
// each other. Spans must come in the order of their begins, the longer first.
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

// Sorts the spans, and gives the spans and the marks their places. Each thread has a lane; if
// threads are not known, each part of the work. The watcher and the link always have their own.
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

}  // namespace

Look LookOf(Activity activity) {
  switch (activity) {
    case Activity::kRequest:
      return {"request", "request"};
    case Activity::kSearch:
      return {"search", "search"};
    case Activity::kWait:
      return {"wait", "waiting"};
    case Activity::kAttempt:
      return {"attempt", "connection attempt"};
    case Activity::kUnpair:
      return {"unpair", "unpairing"};
    case Activity::kPair:
      return {"pair", "pairing"};
    case Activity::kOpen:
      return {"open", "open request"};
    case Activity::kClose:
      return {"close", "closing"};
    case Activity::kCheck:
      return {"check", "link check"};
    case Activity::kRecovery:
      return {"recovery", "recovery"};
    case Activity::kPass:
      return {"pass", "watcher pass"};
    case Activity::kStop:
      return {"stop", "stopping the watcher"};
    case Activity::kLink:
      return {"link", "link"};
  }
  return {};
}

Timeline BuildTimeline(const std::vector<Notification>& notifications) {
  Timeline timeline;
  timeline.isTimed = std::ranges::any_of(
      notifications, [](const Notification& notification) { return notification.timeUs != 0; });
  TimelineBuilder builder(timeline.isTimed);
  Clock clock;
  for (const Notification& notification : notifications) {
    const auto number = static_cast<std::int64_t>(timeline.events.size());
    const std::int64_t timeUs =
        timeline.isTimed ? clock.Read(notification.timeUs) : number * kUsPerSecond;
    const LogLine line = ParseLogLine(notification);
    builder.Add(line, timeUs, notification.thread);
    timeline.events.push_back(EventOf(notification, line, timeUs));
    AddMarks(line, timeline.events.back(), timeline.marks);
    timeline.endUs = timeUs;
  }
  builder.End();
  timeline.headline = builder.Headline();
  timeline.verdict = builder.Result();
  timeline.spans = builder.TakeSpans();
  AssignLanes(timeline);
  return timeline;
}

std::string ReadingOf(const log::SavedLog& saved) {
  const std::size_t understood = saved.notifications.size();
  return understood == saved.lines ? ""
                                   : "understood " + std::to_string(understood) + " of " +
                                         std::to_string(saved.lines) + " lines";
}

Timeline BuildTimeline(const log::SavedLog& saved) {
  Timeline timeline = BuildTimeline(saved.notifications);
  timeline.reading = ReadingOf(saved);
  if (saved.unclear > 0) {
    timeline.verdict = Verdict::kUnknown;
    timeline.headline = "As far as the log was understood: " + timeline.headline;
  }
  return timeline;
}

}  // namespace lanvoss::timeline
