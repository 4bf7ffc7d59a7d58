// The part of the builder that follows connection attempts.
#include <algorithm>

#include "timeline/timeline_builder.h"

namespace lanvoss::timeline {

void TimelineBuilder::TrackAttempts(const LogLine& line) {
  Attempt* const attempt = AttemptOf(line);
  if (line.event == LogEvent::kAttemptBegins) {
    BeginAttempt(line);
  } else if (attempt == nullptr) {
    TrackHostsClose(line);
  } else {
    TrackPairing(*attempt, line);
    TrackOpening(*attempt, line);
    if (line.event == LogEvent::kLinkUp || line.event == LogEvent::kNoLink ||
        line.event == LogEvent::kAttemptError) {
      EndAttempt(*attempt, line);
    }
  }
}

void TimelineBuilder::TrackHostsClose(const LogLine& line) {
  if (line.event == LogEvent::kCloseBegins) {
    BeginOnThread(Activity::kClose, Part::kHost, "close");
  } else if (line.event == LogEvent::kCloseEnded) {
    if (auto close = EndOnThread(Activity::kClose)) {
      Finish(std::move(*close), IsTrouble(line) ? Ending::kBad : Ending::kPlain);
    }
  }
}

void TimelineBuilder::BeginAttempt(const LogLine& line) {
  for (Goal& goal : goals_) {
    goal.isRequest = goal.isRequest || goal.name == line.name;
  }
  attempts_.push_back(
      {Begin(Activity::kAttempt, Part::kConnection, "connect " + line.name), line.name});
}

void TimelineBuilder::TrackPairing(Attempt& attempt, const LogLine& line) {
  if (line.event == LogEvent::kUnpairing) {
    BeginStep(attempt, Activity::kUnpair, "unpair");
  } else if (line.event == LogEvent::kPairingBegins || line.event == LogEvent::kPairingEnded) {
    EndStep(attempt, Ending::kPlain);
  } else if (line.event == LogEvent::kCeremonyBegins) {
    BeginStep(attempt, Activity::kPair, "pair");
  } else if (line.event == LogEvent::kPairingStatus) {
    EndStep(attempt, IsTrouble(line) ? Ending::kBad : Ending::kGood, ": " + line.text);
    if (line.text == "Failed") {  // after any other status the attempt continues at once
      BeginStep(attempt, Activity::kWait, "pause");
    }
  }
}

void TimelineBuilder::TrackOpening(Attempt& attempt, const LogLine& line) {
  if (line.event == LogEvent::kCloseBegins) {
    BeginStep(attempt, Activity::kClose, "close");
  } else if (line.event == LogEvent::kCloseEnded) {
    EndStep(attempt, IsTrouble(line) ? Ending::kBad : Ending::kPlain);
  } else if (line.event == LogEvent::kOpenBegins || line.event == LogEvent::kOpenBeginsAfterClose) {
    BeginStep(attempt, Activity::kOpen, "open 1");
  } else if (line.event == LogEvent::kOpenDone) {
    attempt.opened = std::exchange(attempt.step, std::nullopt);
    if (attempt.opened) {
      attempt.opened->endUs = nowUs_;
    }
  } else if (line.event == LogEvent::kOpenGaveNone) {
    TakeNone(attempt, line);
  } else if (line.event == LogEvent::kOpenCancelled) {
    EndStep(attempt, Ending::kBad, ": cancelled");
  } else if (line.event == LogEvent::kNoLink || line.event == LogEvent::kAttemptGivenUp) {
    attempt.step.reset();  // an open request that did not begin
  }
}

void TimelineBuilder::TakeNone(Attempt& attempt, const LogLine& line) {
  if (attempt.opened) {
    Span pause = Begin(Activity::kWait, Part::kConnection, "pause");
    pause.beginUs = attempt.opened->endUs;
    Finish(std::move(pause), Ending::kPlain);
    attempt.opened->label += ": none";
    FinishAt(*attempt.opened, Ending::kBad, attempt.opened->endUs);
    attempt.opened.reset();
  }
  // The next request, if there is one; it is dropped when the attempt ends at once.
  BeginStep(attempt, Activity::kOpen,
            "open " + std::to_string(line.number.value_or(0) + std::int64_t{1}));
}

void TimelineBuilder::BeginStep(Attempt& attempt, Activity activity, std::string label) {
  EndStep(attempt, Ending::kPlain);
  attempt.step = Begin(activity, Part::kConnection, std::move(label));
}

void TimelineBuilder::EndStep(Attempt& attempt, Ending ending, const std::string& result) {
  if (attempt.step) {
    attempt.step->label += result;
    Finish(std::move(*attempt.step), ending);
    attempt.step.reset();
  }
}

void TimelineBuilder::EndAttempt(Attempt& ended, const LogLine& line) {
  const auto place = attempts_.begin() + (&ended - attempts_.data());
  Attempt attempt = std::move(*place);
  attempts_.erase(place);
  const Ending ending = line.event == LogEvent::kLinkUp ? Ending::kGood : Ending::kBad;
  EndStep(attempt, ending, ending == Ending::kBad ? ": error" : "");
  if (attempt.opened) {
    FinishAt(*attempt.opened, ending, attempt.opened->endUs);
  }
  if (line.event == LogEvent::kNoLink) {
    EndRecoveries([&](const Recovery& each) { return each.name == attempt.name; }, false);
  }
  Finish(std::move(attempt.span), ending);
}

// The thread's latest attempt. If threads are not known, the line's name must match, if it has one.
TimelineBuilder::Attempt* TimelineBuilder::AttemptOf(const LogLine& line) {
  const auto found =
      std::find_if(attempts_.rbegin(), attempts_.rend(), [&](const Attempt& attempt) {
        return attempt.span.thread == thread_ &&
               (thread_ != 0 || line.name.empty() || line.name == attempt.name);
      });
  return found == attempts_.rend() ? nullptr : &*found;
}

}  // namespace lanvoss::timeline
