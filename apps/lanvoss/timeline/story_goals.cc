// The part of a story that tells what hosts asked for, and of the watcher's passes.
#include <algorithm>

#include "timeline/duration.h"
#include "timeline/story.h"

namespace lanvoss::program {

void Story::HearGoal(const LogLine& line) {
  if (line.step == Step::kWatchBegins) {
    BeginGoal(line.name, false);
  } else if (line.step == Step::kWatchBegun) {
    for (Goal& goal : goals_) {
      if (goal.span.thread == thread_ && !goal.waitsSinceUs) {
        goal.waitsSinceUs = nowUs_;
      }
    }
  } else {
    HearRequest(line);
    HearStop(line);
  }
}

void Story::HearRequest(const LogLine& line) {
  if (line.step == Step::kGapWait) {
    BeginGoal(line.name, true);
    continues_.insert(thread_);
    FinishAt(Begin(Activity::kWait, Part::kHost, "gap"), Ending::kPlain,
             nowUs_ + line.ms.value_or(0) * kUsPerMs);
  } else if (line.step == Step::kConnectsById) {
    BeginGoal(line.name, true);
  } else if (line.step == Step::kConnectsByWatch) {
    BeginGoal(line.name, true);
    continues_.insert(thread_);
  } else if (line.step == Step::kAlreadyConnected) {
    BeginGoal(line.name, true);
    if (auto goal = TakeGoal(line.name)) {
      FinishRequest(std::move(*goal), Ending::kGood);
    }
  } else if (line.step == Step::kRequestFailed || line.step == Step::kRequestCancelled) {
    FailRequest(line);
  }
}

void Story::HearStop(const LogLine& line) {
  if (line.step == Step::kStopBegins) {
    BeginOnThread(Activity::kStop, Part::kHost, "stop");
  } else if (line.step == Step::kStopDone || line.step == Step::kStopFailed) {
    if (auto stop = EndOnThread(Activity::kStop)) {
      Finish(std::move(*stop), IsTrouble(line) ? Ending::kBad : Ending::kPlain);
    }
  }
}

// Unless the line goes on with what the thread is at. There is one watch: a new goal ends the
// searches before it, and a thread, or for all that is known a device, has one request at a time.
void Story::BeginGoal(const std::string& name, bool isRequest) {
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

// A search has no line of its own that ends it. What it came to is known by now; if nothing is, it
// has ended `otherwise`.
void Story::SettleSearch(Goal goal, Ending otherwise) {
  goal.span.activity = Activity::kSearch;
  goal.span.label = goal.name.empty() ? "search" : "search " + goal.name;
  const std::int64_t end =
      goal.keeps ? nowUs_ : goal.foundUs.value_or(goal.watchEndedUs.value_or(nowUs_));
  const std::string after = " after " + DurationText(end - goal.span.beginUs);
  Ending ending = otherwise;
  if (goal.foundUs) {
    ending = Ending::kGood;
    Take(goal.name, "found after " + DurationText(*goal.foundUs - goal.span.beginUs), true);
  } else if (goal.watchEndedUs) {
    ending = goal.name.empty() ? Ending::kGood : Ending::kBad;
    Take(goal.name,
         goal.name.empty() ? "devices reported: " + std::to_string(reported_) : "not found" + after,
         goal.name.empty());
  } else if (otherwise == Ending::kUnfinished) {
    Take(goal.name, "still looked for after " + DurationText(end - goal.span.beginUs), false);
  }
  FinishAt(std::move(goal.span), ending, end);
}

void Story::FinishRequest(Goal goal, Ending ending) {
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

void Story::FailRequest(const LogLine& line) {
  auto goal = TakeGoal(line.name);
  if (!goal && line.step == Step::kRequestCancelled) {
    return;
  }
  if (!goal) {  // its beginning is not in the log
    goal = Goal{.span = Begin(Activity::kRequest, Part::kHost, ""), .name = line.name};
    goal->span.beginUs =
        std::clamp<std::int64_t>(nowUs_ - line.ms.value_or(0) * kUsPerMs, 0, nowUs_);
  }
  Take(goal->name, "no link after " + DurationText(nowUs_ - goal->span.beginUs), false);
  FinishRequest(std::move(*goal), Ending::kBad);
}

// The latest for the name; for no name, the thread's latest.
std::optional<Story::Goal> Story::TakeGoal(const std::string& name) {
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

Story::Goal* Story::GoalNamed(const std::string& name) {
  const auto found = std::ranges::find(goals_, name, &Goal::name);
  return found == goals_.end() ? nullptr : &*found;
}

void Story::HearWatch(const LogLine& line) {
  if (line.step == Step::kPassStarting) {
    EndPass(Ending::kPlain);
    pass_ = Begin(Activity::kPass, Part::kWatcher, "pass " + std::to_string(++passes_));
    reported_ = 0;
  } else if (line.step == Step::kReported) {
    ++reported_;
  } else if (line.step == Step::kFound) {
    if (Goal* goal = GoalNamed(line.name); goal != nullptr && !goal->foundUs) {
      goal->foundUs = nowUs_;
    }
  } else if (line.step == Step::kWatchRefused) {
    EndPass(Ending::kBad);
  } else if (line.step == Step::kWatchesAgain) {
    WatchAgain();
  } else if (line.step == Step::kWatchEnded || line.step == Step::kWatchedGone) {
    EndPass(Ending::kPlain);
    EndWatch(line);
  }
}

void Story::WatchAgain() {
  EndPass(Ending::kPlain);
  continues_.insert(thread_);
  for (Goal& goal : goals_) {
    goal.keeps = goal.foundUs.has_value();
  }
}

void Story::EndPass(Ending ending) {
  if (pass_) {
    pass_->label += ", devices: " + std::to_string(reported_);
    Finish(std::move(*pass_), ending);
    pass_.reset();
  }
}

// A search that has found nothing may still turn out to be a request: its failure is logged next.
void Story::EndWatch(const LogLine& line) {
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
  if (line.step == Step::kWatchedGone) {
    Take(line.name, "gone after " + DurationText(line.ms.value_or(0) * kUsPerMs), false);
  }
}

}  // namespace lanvoss::program
