#include "timeline/timeline.h"

#include <utility>

#include "log_line.h"
#include "timeline/duration.h"
#include "timeline/lanes.h"
#include "timeline/story.h"

namespace lanvoss::program {
namespace {

// Threads that write at once are stamped a little out of order. What goes further back, or this far
// ahead, is a clock that was set.
constexpr std::int64_t kDisorderUs = kUsPerSecond;
constexpr std::int64_t kLongestSilenceUs = 2'592'000 * kUsPerSecond;  // 30 days

// Makes a time that never goes backwards of the stamps.
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
          .byPlatform = IsByPlatform(line.step),
          .kind = notification.kind,
          .words = line.step == Step::kUnknown ? notification.message : WordsOf(line),
          .message = notification.message};
}

// A moment that the picture marks by its own, or the tick of a thread that wrote a line.
void AddMarks(const LogLine& line, const Event& event, std::vector<Mark>& marks) {
  const Wording& wording = WordingOf(line.step);
  Mark mark{.words = event.words,
            .timeUs = event.timeUs,
            .trouble = event.trouble,
            .part = wording.part,
            .thread = event.thread};
  if (wording.mark != nullptr) {
    mark.label = FillIn(wording.mark, line);
    marks.push_back(mark);
  }
  if (event.thread != 0 && (wording.mark == nullptr || HasItsOwnLane(wording.part))) {
    mark.label.clear();
    mark.part = Part::kHost;
    marks.push_back(std::move(mark));
  }
}

}  // namespace

Timeline Tell(const std::vector<Notification>& notifications) {
  Timeline timeline;
  Story story;
  Clock clock;
  for (const Notification& notification : notifications) {
    const std::int64_t timeUs = clock.Read(notification.timeUs);
    const LogLine line = notification.kind == "info" ? Understand(notification.message) : LogLine{};
    story.Hear(line, timeUs, notification.thread);
    timeline.events.push_back(EventOf(notification, line, timeUs));
    AddMarks(line, timeline.events.back(), timeline.marks);
    timeline.endUs = timeUs;
  }
  story.End();
  timeline.headline = story.Headline();
  timeline.endsWell = story.EndsWell();
  timeline.spans = story.TakeSpans();
  AssignLanes(timeline);
  return timeline;
}

}  // namespace lanvoss::program
