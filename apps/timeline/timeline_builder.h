// Makes spans from log lines. A line is one moment; the builder remembers what has begun.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "log/notification.h"
#include "timeline/timeline.h"

namespace lanvoss::timeline {

class TimelineBuilder {
 public:
  // Durations are not said where the times are not known.
  explicit TimelineBuilder(bool isTimed) : isTimed_(isTimed) {}

  void Add(const LogLine& line, std::int64_t timeUs, int thread);
  // Ends what has not ended, as unfinished.
  void End();

  std::string Headline() const;
  Verdict Result() const;
  std::vector<Span> TakeSpans() { return std::move(spans_); }

 private:
  // What a host asked for: an address, or a search. The first lines of the two are the same.
  struct Goal {
    Span span;
    std::string name;  // empty: every device
    bool isRequest = false;
    bool keeps = false;                          // a search that continues after its find
    std::optional<std::int64_t> waitsSinceUs{};  // when it had done its own part
    std::optional<std::int64_t> foundUs{};
    std::optional<std::int64_t> watchEndedUs{};
  };
  struct Attempt {
    Span span;
    std::string name;
    std::optional<Span> step{};    // that has begun and not ended
    std::optional<Span> opened{};  // the open request that is done, its result not known yet
  };
  struct Recovery {
    Span span;
    std::string name;
  };
  // An event in the headline.
  struct Turn {
    std::string name;
    std::string text;
    bool good;
  };

  std::string HeadlineOf(std::size_t turns) const;
  // " after 1.9 s".
  std::string After(std::int64_t us) const;
  Span Begin(Activity activity, Part part, std::string label) const;
  void Finish(Span span, Ending ending);
  void FinishAt(Span span, Ending ending, std::int64_t endUs);
  void AddTurn(const std::string& name, const std::string& text, bool good);
  // For what a thread does only one at a time.
  void BeginOnThread(Activity activity, Part part, std::string label);
  std::optional<Span> EndOnThread(Activity activity);

  void TrackGoals(const LogLine& line);
  void TrackRequest(const LogLine& line);
  void TrackStop(const LogLine& line);
  void BeginGoal(const std::string& name, bool isRequest);
  void SettleSearch(Goal goal, Ending otherwise);
  void FinishRequest(Goal goal, Ending ending);
  void FailRequest(const LogLine& line);
  std::optional<Goal> TakeGoal(const std::string& name);
  Goal* GoalNamed(const std::string& name);

  void TrackWatch(const LogLine& line);
  void WatchAgain();
  void EndPass(Ending ending);
  void EndWatch(const LogLine& line);

  void TrackAttempts(const LogLine& line);
  void BeginAttempt(const LogLine& line);
  void TrackPairing(Attempt& attempt, const LogLine& line);
  void TrackOpening(Attempt& attempt, const LogLine& line);
  void TakeNone(Attempt& attempt, const LogLine& line);
  void TrackHostsClose(const LogLine& line);
  void BeginStep(Attempt& attempt, Activity activity, std::string label);
  void EndStep(Attempt& attempt, Ending ending, const std::string& result = "");
  void EndAttempt(Attempt& ended, const LogLine& line);
  Attempt* AttemptOf(const LogLine& line);

  void TrackLink(const LogLine& line);
  void BeginLink(const LogLine& line);
  void EndLink(Ending ending);

  void TrackCheck(const LogLine& line);
  void BeginRecovery(const LogLine& line);
  void EndRecoveries(const std::function<bool(const Recovery&)>& are, bool good);

  const bool isTimed_;
  std::int64_t nowUs_ = 0;
  int thread_ = 0;
  std::vector<Span> spans_;
  std::vector<Turn> turns_;

  std::vector<Goal> goals_;
  std::set<int> continues_;  // threads whose next start of a watch belongs to what they do already
  std::optional<Span> pass_;
  int passes_ = 0;    // since the goal began
  int reported_ = 0;  // by the pass
  std::vector<Attempt> attempts_;
  std::optional<Span> link_;
  std::vector<Recovery> recoveries_;
  std::map<std::pair<Activity, int>, Span> onThreads_;
};

}  // namespace lanvoss::timeline
