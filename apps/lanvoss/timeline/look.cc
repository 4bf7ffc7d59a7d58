#include "timeline/look.h"

namespace lanvoss::program {

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

}  // namespace lanvoss::program
