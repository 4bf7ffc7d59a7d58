#include "failing_product.h"

#include <utility>

namespace lanvoss::nth {
namespace {

platform::Platform current;

struct {
  bool armed = false;
  Failure failure = Failure::kRadioError;
  unsigned nth = 0;
  bool lasts = false;
  unsigned steps = 0;
} plan;

thread_local bool isExempt = false;

}  // namespace

void StandOn(platform::Platform platform) { current = std::move(platform); }

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

namespace lanvoss::platform {

Platform CreatePlatform() { return nth::current; }

}  // namespace lanvoss::platform
