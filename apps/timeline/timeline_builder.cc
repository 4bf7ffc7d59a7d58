#include "timeline/timeline_builder.h"

#include <algorithm>

#include "timeline/duration.h"

namespace lanvoss::timeline {
namespace {

// A headline has room for so many turns and bytes, but always for two turns.
constexpr std::size_t kHeadlineTurns = 4;
constexpr std::size_t kHeadlineLength = 90;

}  // namespace

void TimelineBuilder::Add(const LogLine& line, std::int64_t timeUs, int thread) {
  nowUs_ = timeUs;
  thread_ = thread;
  TrackGoals(line);
  TrackWatch(line);
  TrackAttempts(line);
  TrackLink(line);
  TrackCheck(line);
}

void TimelineBuilder::End() {
  for (Goal& goal : std::exchange(goals_, {})) {
    if (goal.isRequest) {
      AddTurn(goal.name, "still without a link" + After(nowUs_ - goal.span.beginUs), false);
      FinishRequest(std::move(goal), Ending::kUnfinished);
    } else {
      SettleSearch(std::move(goal), Ending::kUnfinished);
    }
  }
  for (Attempt& attempt : std::exchange(attempts_, {})) {
    EndStep(attempt, Ending::kUnfinished);
    if (attempt.opened) {
      FinishAt(*attempt.opened, Ending::kPlain, attempt.opened->endUs);
    }
    Finish(std::move(attempt.span), Ending::kUnfinished);
  }
  for (Recovery& recovery : std::exchange(recoveries_, {})) {
    Finish(std::move(recovery.span), Ending::kUnfinished);
  }
  for (auto& [key, span] : std::exchange(onThreads_, {})) {
    Finish(span, Ending::kUnfinished);
  }
  EndPass(Ending::kUnfinished);
  EndLink(Ending::kGood);  // it is up when the log ends
  for (Span& span : spans_) {
    if (span.endUs > nowUs_) {  // a gap is logged before it begins
      span.endUs = nowUs_;
      span.ending = Ending::kUnfinished;
    }
  }
}

std::string TimelineBuilder::Headline() const {
  for (std::size_t turns = kHeadlineTurns;; --turns) {
    std::string headline = HeadlineOf(turns);
    if (headline.size() <= kHeadlineLength || turns == 2) {
      return headline.empty() ? "Nothing was asked for" : headline;
    }
  }
}

Verdict TimelineBuilder::Result() const {
  return turns_.empty() ? Verdict::kUnknown : turns_.back().good ? Verdict::kGood : Verdict::kBad;
}

std::string TimelineBuilder::After(std::int64_t us) const {
  return isTimed_ ? " after " + DurationText(us) : "";
}

// The first turn and the last ones.
std::string TimelineBuilder::HeadlineOf(std::size_t turns) const {
  const std::size_t leftOut = turns_.size() - std::min(turns_.size(), turns);
  std::string headline;
  std::string name;
  for (std::size_t i = 0; i < turns_.size(); ++i) {
    if (i == 1 && leftOut > 0) {
      headline += " ... ";
      i += leftOut;
    } else if (i > 0) {
      headline += ", ";
    }
    const Turn& turn = turns_[i];
    if (turn.name != name) {
      name = turn.name;
      headline += name.empty() ? "" : name + ": ";
    }
    headline += turn.text;
  }
  return headline;
}

Span TimelineBuilder::Begin(Activity activity, Part part, std::string label) const {
  return {.activity = activity,
          .part = part,
          .thread = thread_,
          .label = std::move(label),
          .beginUs = nowUs_};
}

void TimelineBuilder::Finish(Span span, Ending ending) {
  FinishAt(std::move(span), ending, nowUs_);
}

void TimelineBuilder::FinishAt(Span span, Ending ending, std::int64_t endUs) {
  span.ending = ending;
  span.endUs = std::max(span.beginUs, endUs);
  spans_.push_back(std::move(span));
}

void TimelineBuilder::AddTurn(const std::string& name, const std::string& text, bool good) {
  turns_.push_back({name, text, good});
}

void TimelineBuilder::BeginOnThread(Activity activity, Part part, std::string label) {
  if (auto before = EndOnThread(activity)) {
    Finish(std::move(*before), Ending::kPlain);
  }
  onThreads_[{activity, thread_}] = Begin(activity, part, std::move(label));
}

std::optional<Span> TimelineBuilder::EndOnThread(Activity activity) {
  auto node = onThreads_.extract({activity, thread_});
  return node.empty() ? std::nullopt : std::optional(std::move(node.mapped()));
}

void TimelineBuilder::TrackLink(const LogLine& line) {
  if (line.event == LogEvent::kLinkUp) {
    BeginLink(line);
  } else if ((line.event == LogEvent::kStatusChanged && line.text == "Disconnected") ||
             (line.event == LogEvent::kCloseEnded && line.text == "ok")) {
    EndLink(Ending::kPlain);
  }
}

void TimelineBuilder::BeginLink(const LogLine& line) {
  EndLink(Ending::kPlain);
  link_ = Begin(Activity::kLink, Part::kLink, line.name + ": " + line.local + " to " + line.remote);
  EndRecoveries([&](const Recovery& each) { return each.name == line.name; }, true);
  if (auto goal = TakeGoal(line.name)) {
    AddTurn(line.name, "connected" + After(nowUs_ - goal->span.beginUs), true);
    FinishRequest(std::move(*goal), Ending::kGood);
  }
}

void TimelineBuilder::EndLink(Ending ending) {
  if (link_) {
    Finish(std::move(*link_), ending);
    link_.reset();
  }
}

void TimelineBuilder::TrackCheck(const LogLine& line) {
  if (line.event == LogEvent::kProbing) {
    BeginOnThread(Activity::kCheck, Part::kCheck, "check");
  } else if (line.event == LogEvent::kProbed) {
    if (auto check = EndOnThread(Activity::kCheck)) {
      check->label += ", replies: " + std::to_string(line.number.value_or(0));
      Finish(std::move(*check), IsTrouble(line) ? Ending::kBad : Ending::kGood);
    }
  } else if (line.event == LogEvent::kRecovers || line.event == LogEvent::kRecoversByWatch) {
    BeginRecovery(line);
  } else if (line.event == LogEvent::kNotRecovered) {
    AddTurn(line.name, "silent again", false);
  } else if (line.event == LogEvent::kStopDone) {  // the recovery's time is up
    EndRecoveries([this](const Recovery& each) { return each.span.thread == thread_; }, false);
  }
}

void TimelineBuilder::BeginRecovery(const LogLine& line) {
  AddTurn(line.name, "silent", false);
  EndLink(Ending::kBad);
  recoveries_.push_back(
      {Begin(Activity::kRecovery, Part::kCheck, "recover " + line.name), line.name});
  if (line.event == LogEvent::kRecoversByWatch) {
    continues_.insert(thread_);
  }
}

void TimelineBuilder::EndRecoveries(const std::function<bool(const Recovery&)>& are, bool good) {
  for (Recovery& recovery : recoveries_) {
    if (are(recovery)) {
      AddTurn(recovery.name,
              good ? "connected again" + After(nowUs_ - recovery.span.beginUs) : "not recovered",
              good);
      Finish(recovery.span, good ? Ending::kGood : Ending::kBad);
    }
  }
  std::erase_if(recoveries_, are);
}

}  // namespace lanvoss::timeline
