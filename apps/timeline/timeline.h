// What happened when, and on which thread, according to the library's notifications.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "log/notification.h"
#include "log/saved_log.h"

namespace lanvoss::timeline {

using log::LogEvent;
using log::LogLine;
using log::Notification;
using log::Part;

// What a span is about. Each has its own colour. An activity comes before those that it can
// contain.
enum class Activity {
  kRequest,  // of an address
  kSearch,   // a watch that the host started
  kRecovery,
  kWait,
  kAttempt,  // to connect
  kUnpair,
  kPair,
  kOpen,
  kClose,
  kCheck,
  kPass,  // of the watcher
  kStop,
  kLink,
};

struct Look {
  const char* style;  // the class of the style sheet that gives it its colour
  const char* name;   // in the legend
};

Look LookOf(Activity activity);

enum class Ending { kPlain, kGood, kBad, kUnfinished };

// Times are in microseconds from the first notification, and never go backwards.
struct Span {
  Activity activity = Activity::kWait;
  Part part = Part::kHost;
  int thread = 0;  // that did it; 0: not known
  std::string label = {};
  std::int64_t beginUs = 0;
  std::int64_t endUs = 0;
  Ending ending = Ending::kUnfinished;
  std::size_t lane = 0;   // of Timeline::lanes
  std::size_t row = 0;    // of the lane; no two spans of a row overlap
  std::size_t track = 0;  // of the lane; two spans of a track are nested or apart
};

struct Mark {
  std::string label = {};  // empty: only that the thread did something
  std::string words = {};
  std::int64_t timeUs = 0;
  bool trouble = false;
  Part part = Part::kHost;
  int thread = 0;
  std::size_t lane = 0;
};

struct Lane {
  std::string label;
  std::size_t rows = 0;
};

// One notification.
struct Event {
  std::int64_t timeUs = 0;
  std::int64_t clockUs = 0;  // as it was stamped
  int thread = 0;
  bool trouble = false;
  bool byPlatform = false;  // on a thread of the platform
  std::string kind;
  std::string words;    // for readers who do not know the log
  std::string message;  // as it came
};

// Whether the last thing that was asked for ended well.
enum class Verdict { kGood, kBad, kUnknown };

struct Timeline {
  std::string headline;  // the outcome, in a line
  Verdict verdict = Verdict::kUnknown;
  std::string reading = {};  // how much of a saved log was understood, if not all
  bool isTimed = true;       // false: the log has no times, so each notification takes a second
  std::vector<Lane> lanes;
  std::vector<Span> spans;    // by their begins
  std::vector<Mark> marks;    // by time
  std::vector<Event> events;  // by time
  std::int64_t endUs = 0;
};

Timeline BuildTimeline(const std::vector<Notification>& notifications);

// The verdict is unknown if there are lines that could have changed it.
Timeline BuildTimeline(const log::SavedLog& saved);

// "understood 2 of 67 lines"; empty if all were understood.
std::string ReadingOf(const log::SavedLog& saved);

}  // namespace lanvoss::timeline
