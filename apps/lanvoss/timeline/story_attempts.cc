// The part of a story that tells of connection attempts.
#include <algorithm>

#include "timeline/story.h"

namespace lanvoss::program {

void Story::HearAttempt(const LogLine& line) {
  Attempt* const attempt = AttemptOf(line);
  if (line.step == Step::kAttemptBegins) {
    BeginAttempt(line);
  } else if (attempt == nullptr) {
    HearHostsClose(line);
  } else {
    HearPairing(*attempt, line);
    HearOpening(*attempt, line);
    if (line.step == Step::kLinkUp || line.step == Step::kNoLink ||
        line.step == Step::kAttemptError) {
      EndAttempt(*attempt, line);
    }
  }
}

void Story::HearHostsClose(const LogLine& line) {
  if (line.step == Step::kCloseBegins) {
    BeginOnThread(Activity::kClose, Part::kHost, "close");
  } else if (line.step == Step::kCloseEnded) {
    if (auto close = EndOnThread(Activity::kClose)) {
      Finish(std::move(*close), IsTrouble(line) ? Ending::kBad : Ending::kPlain);
    }
  }
}

void Story::BeginAttempt(const LogLine& line) {
  for (Goal& goal : goals_) {
    goal.isRequest = goal.isRequest || goal.name == line.name;
  }
  attempts_.push_back(
      {Begin(Activity::kAttempt, Part::kConnection, "connect " + line.name), line.name});
}

void Story::HearPairing(Attempt& attempt, const LogLine& line) {
  if (line.step == Step::kUnpairing) {
    BeginStep(attempt, Activity::kUnpair, "unpair");
  } else if (line.step == Step::kPairingBegins || line.step == Step::kPairingEnded) {
    EndStep(attempt, Ending::kPlain);
  } else if (line.step == Step::kCeremonyBegins) {
    BeginStep(attempt, Activity::kPair, "pair");
  } else if (line.step == Step::kPairingStatus) {
    EndStep(attempt, IsTrouble(line) ? Ending::kBad : Ending::kGood, ": " + line.text);
    if (line.text == "Failed") {  // after any other status the attempt goes right on
      BeginStep(attempt, Activity::kWait, "pause");
    }
  }
}

void Story::HearOpening(Attempt& attempt, const LogLine& line) {
  if (line.step == Step::kCloseBegins) {
    BeginStep(attempt, Activity::kClose, "close");
  } else if (line.step == Step::kCloseEnded) {
    EndStep(attempt, IsTrouble(line) ? Ending::kBad : Ending::kPlain);
  } else if (line.step == Step::kOpenBegins || line.step == Step::kOpenBeginsAfterClose) {
    BeginStep(attempt, Activity::kOpen, "open 1");
  } else if (line.step == Step::kOpenDone) {
    attempt.opened = std::exchange(attempt.step, std::nullopt);
    if (attempt.opened) {
      attempt.opened->endUs = nowUs_;
    }
  } else if (line.step == Step::kOpenGaveNone) {
    TakeNone(attempt, line);
  } else if (line.step == Step::kOpenCancelled) {
    EndStep(attempt, Ending::kBad, ": cancelled");
  } else if (line.step == Step::kNoLink || line.step == Step::kAttemptGivenUp) {
    attempt.step.reset();  // an open request that did not begin
  }
}

void Story::TakeNone(Attempt& attempt, const LogLine& line) {
  if (attempt.opened) {
    Span pause = Begin(Activity::kWait, Part::kConnection, "pause");
    pause.beginUs = attempt.opened->endUs;
    Finish(std::move(pause), Ending::kPlain);
    attempt.opened->label += ": none";
    FinishAt(*attempt.opened, Ending::kBad, attempt.opened->endUs);
    attempt.opened.reset();
  }
  // If there is a next one; it is dropped when the attempt ends at once.
  BeginStep(attempt, Activity::kOpen,
            "open " + std::to_string(line.number.value_or(0) + std::int64_t{1}));
}

void Story::BeginStep(Attempt& attempt, Activity activity, std::string label) {
  EndStep(attempt, Ending::kPlain);
  attempt.step = Begin(activity, Part::kConnection, std::move(label));
}

void Story::EndStep(Attempt& attempt, Ending ending, const std::string& result) {
  if (attempt.step) {
    attempt.step->label += result;
    Finish(std::move(*attempt.step), ending);
    attempt.step.reset();
  }
}

void Story::EndAttempt(Attempt& ended, const LogLine& line) {
  const auto place = attempts_.begin() + (&ended - attempts_.data());
  Attempt attempt = std::move(*place);
  attempts_.erase(place);
  const Ending ending = line.step == Step::kLinkUp ? Ending::kGood : Ending::kBad;
  EndStep(attempt, ending, ending == Ending::kBad ? ": error" : "");
  if (attempt.opened) {
    FinishAt(*attempt.opened, ending, attempt.opened->endUs);
  }
  if (line.step == Step::kNoLink) {
    EndRecoveries([&](const Recovery& each) { return each.name == attempt.name; }, false);
  }
  Finish(std::move(attempt.span), ending);
}

// The thread's latest. Where threads are not known, at least a name that the line has must match.
Story::Attempt* Story::AttemptOf(const LogLine& line) {
  const auto found =
      std::find_if(attempts_.rbegin(), attempts_.rend(), [&](const Attempt& attempt) {
        return attempt.span.thread == thread_ &&
               (thread_ != 0 || line.name.empty() || line.name == attempt.name);
      });
  return found == attempts_.rend() ? nullptr : &*found;
}

}  // namespace lanvoss::program
