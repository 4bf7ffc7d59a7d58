#include "failing_core.h"

#include <utility>

#include "watcher/make_lanvoss.h"

namespace lanvoss::nth {
namespace {

struct {
  bool armed = false;
  Failure failure = Failure::kRadioError;
  unsigned nth = 0;
  bool lasts = false;
  unsigned steps = 0;
} plan;

thread_local bool isExempt = false;

}  // namespace

std::shared_ptr<LanvossInterface> MakeFailing(platform::Platform platform, NotifyCallback notify,
                                              std::string directory) {
  return MakeLanvoss(std::move(platform), notify, std::move(directory));
}

void Plant(Failure failure, unsigned nth, bool lasts) { plan = {true, failure, nth, lasts, 0}; }

void Unplant() { plan.armed = false; }

bool HasFailed() { return plan.steps >= plan.nth; }

void ExemptThisThread() { isExempt = true; }

bool IsDue(Failure failure) {
  if (!plan.armed || plan.failure != failure || isExempt) {
    return false;
  }
  ++plan.steps;
  return plan.lasts ? plan.steps >= plan.nth : plan.steps == plan.nth;
}

}  // namespace lanvoss::nth
