// The part of the builder that follows what hosts asked for, and the watcher's passes.
#include <algorithm>
#include <iterator>

#include "timeline/duration.h"
#include "timeline/timeline_builder.h"

namespace lanvoss::timeline {

void TimelineBuilder::TrackGoals(const LogLine& line) {
  if (line.event == LogEvent::kWatchBegins) {
    BeginGoal(line.name, false);
  } else if (line.event == LogEvent::kWatchBegun) {
    for (Goal& goal : goals_) {
      if (goal.span.thread == thread_ && !goal.waitsSinceUs) {
        goal.waitsSinceUs = nowUs_;
      }
    }
  } else {
    TrackRequest(line);
    TrackStop(line);
  }
}

void TimelineBuilder::TrackRequest(const LogLine& line) {
  if (line.event == LogEvent::kGapWait) {
    BeginGoal(line.name, true);
    continues_.insert(thread_);
    FinishAt(Begin(Activity::kWait, Part::kHost, "gap"), Ending::kPlain,
             nowUs_ + line.ms.value_or(0) * kUsPerMs);
  } else if (line.event == LogEvent::kConnectsById) {
    BeginGoal(line.name, true);
  } else if (line.event == LogEvent::kConnectsByWatch) {
    BeginGoal(line.name, true);
    continues_.insert(thread_);
  } else if (line.event == LogEvent::kAlreadyConnected) {
    BeginGoal(line.name, true);
    if (auto goal = TakeGoal(line.name)) {
      FinishRequest(std::move(*goal), Ending::kGood);
    }
  } else if (line.event == LogEvent::kRequestFailed || line.event == LogEvent::kRequestCancelled) {
    FailRequest(line);
  }
}

void TimelineBuilder::TrackStop(const LogLine& line) {
  if (line.event == LogEvent::kStopBegins) {
    BeginOnThread(Activity::kStop, Part::kHost, "stop");
  } else if (line.event == LogEvent::kStopDone || line.event == LogEvent::kStopFailed) {
    if (auto stop = EndOnThread(Activity::kStop)) {
      Finish(std::move(*stop), IsTrouble(line) ? Ending::kBad : Ending::kPlain);
    }
  }
}

// Does nothing if the line continues the thread's present goal. There is one watch, so a new goal
// ends the searches before it. A thread (if not known, a device) has one request at a time.
void TimelineBuilder::BeginGoal(const std::string& name, bool isRequest) {
  if (continues_.erase(thread_) > 0) {
    return;
  }
  std::vector<Goal> before;
  std::erase_if(goals_, [&](Goal& goal) {
    const bool ends =
        !goal.isRequest || (goal.span.thread == thread_ && (thread_ != 0 || goal.name == name));
    if (ends) {
      before.push_back(std::move(goal));
    }
    return ends;
  });
  for (Goal& goal : before) {
    if (goal.isRequest) {
      FinishRequest(std::move(goal), Ending::kPlain);
    } else {
      SettleSearch(std::move(goal), Ending::kPlain);
    }
  }
  passes_ = 0;
  goals_.push_back({.span = Begin(Activity::kRequest, Part::kHost, "request " + name),
                    .name = name,
                    .isRequest = isRequest});
}

// No line of the log ends a search. Its result is known by now; if there is none, it has ended
// `otherwise`.
void TimelineBuilder::SettleSearch(Goal goal, Ending otherwise) {
  goal.span.activity = Activity::kSearch;
  goal.span.label = goal.name.empty() ? "search" : "search " + goal.name;
  const std::int64_t end =
      goal.keeps ? nowUs_ : goal.foundUs.value_or(goal.watchEndedUs.value_or(nowUs_));
  Ending ending = otherwise;
  if (goal.foundUs) {
    ending = Ending::kGood;
    AddTurn(goal.name, "found" + After(*goal.foundUs - goal.span.beginUs), true);
  } else if (goal.watchEndedUs) {
    ending = goal.name.empty() ? Ending::kGood : Ending::kBad;
    AddTurn(goal.name,
            goal.name.empty() ? "devices reported: " + std::to_string(reported_)
                              : "not found" + After(end - goal.span.beginUs),
            goal.name.empty());
  } else if (otherwise == Ending::kUnfinished) {
    AddTurn(goal.name, "still looked for" + After(end - goal.span.beginUs), false);
  }
  FinishAt(std::move(goal.span), ending, end);
}

void TimelineBuilder::FinishRequest(Goal goal, Ending ending) {
  goal.span.label = "request " + goal.name;
  if (goal.waitsSinceUs) {
    Span wait = goal.span;
    wait.activity = Activity::kWait;
    wait.label = "waits for its end";
    wait.beginUs = *goal.waitsSinceUs;
    Finish(std::move(wait), ending == Ending::kUnfinished ? ending : Ending::kPlain);
  }
  Finish(std::move(goal.span), ending);
}

void TimelineBuilder::FailRequest(const LogLine& line) {
  auto goal = TakeGoal(line.name);
  if (!goal && line.event == LogEvent::kRequestCancelled) {
    return;
  }
  if (!goal) {  // its beginning is not in the log
    goal = Goal{.span = Begin(Activity::kRequest, Part::kHost, ""), .name = line.name};
    goal->span.beginUs =
        std::clamp<std::int64_t>(nowUs_ - line.ms.value_or(0) * kUsPerMs, 0, nowUs_);
  }
  AddTurn(goal->name, "no link" + After(nowUs_ - goal->span.beginUs), false);
  FinishRequest(std::move(*goal), Ending::kBad);
}

// The latest goal with the name; without a name, the thread's latest goal.
std::optional<TimelineBuilder::Goal> TimelineBuilder::TakeGoal(const std::string& name) {
  const auto found = std::find_if(goals_.rbegin(), goals_.rend(), [&](const Goal& goal) {
    return name.empty() ? goal.span.thread == thread_ : goal.name == name;
  });
  if (found == goals_.rend()) {
    return std::nullopt;
  }
  Goal goal = std::move(*found);
  goals_.erase(std::next(found).base());
  return goal;
}

TimelineBuilder::Goal* TimelineBuilder::GoalNamed(const std::string& name) {
  const auto found = std::ranges::find(goals_, name, &Goal::name);
  return found == goals_.end() ? nullptr : &*found;
}

void TimelineBuilder::TrackWatch(const LogLine& line) {
  if (line.event == LogEvent::kPassStarting) {
    EndPass(Ending::kPlain);
    pass_ = Begin(Activity::kPass, Part::kWatcher, "pass " + std::to_string(++passes_));
    reported_ = 0;
  } else if (line.event == LogEvent::kReported) {
    ++reported_;
  } else if (line.event == LogEvent::kFound) {
    if (Goal* goal = GoalNamed(line.name); goal != nullptr && !goal->foundUs) {
      goal->foundUs = nowUs_;
    }
  } else if (line.event == LogEvent::kWatchRefused) {
    EndPass(Ending::kBad);
  } else if (line.event == LogEvent::kWatchesAgain) {
    WatchAgain();
  } else if (line.event == LogEvent::kWatchEnded || line.event == LogEvent::kWatchedGone) {
    EndPass(Ending::kPlain);
    EndWatch(line);
  }
}

void TimelineBuilder::WatchAgain() {
  EndPass(Ending::kPlain);
  continues_.insert(thread_);
  for (Goal& goal : goals_) {
    goal.keeps = goal.foundUs.has_value();
  }
}

void TimelineBuilder::EndPass(Ending ending) {
  if (pass_) {
    pass_->label += ", devices: " + std::to_string(reported_);
    Finish(std::move(*pass_), ending);
    pass_.reset();
  }
}

// A search that has found nothing may still be a request: then its failure is logged next.
void TimelineBuilder::EndWatch(const LogLine& line) {
  std::vector<Goal> over;
  std::erase_if(goals_, [&](Goal& goal) {
    goal.watchEndedUs = nowUs_;
    const bool ends = !goal.isRequest && (goal.name.empty() || goal.foundUs);
    if (ends) {
      over.push_back(std::move(goal));
    }
    return ends;
  });
  for (Goal& goal : over) {
    SettleSearch(std::move(goal), Ending::kPlain);
  }
  if (line.event == LogEvent::kWatchedGone) {
    AddTurn(line.name, "gone" + After(line.ms.value_or(0) * kUsPerMs), false);
  }
}

}  // namespace lanvoss::timeline
