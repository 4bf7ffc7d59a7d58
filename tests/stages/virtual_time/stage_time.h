// A stage on virtual time: LANVOSS_TEST_SEED (default 1) picks the order of events, unless
// LANVOSS_TEST_TIME=free lets the threads run side by side.
#pragma once

#include <memory>

#include "backends/simulated/virtual_time.h"

namespace lanvoss::test {

using StageTime = simulated::VirtualTime;

std::shared_ptr<StageTime> NewTime();
// Whether threads run side by side, so that the order of what they do is open.
bool IsTimeFree();
// Whether it is known in advance how long something takes.
inline constexpr bool kIsTimeExact = true;

}  // namespace lanvoss::test
