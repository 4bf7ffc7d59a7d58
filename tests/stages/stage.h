// What the scenario tests stand on. The same scenarios are played on several stages; each test
// program brings one.
#pragma once

#include <memory>

#include "backends/simulated/neighbourhood.h"
#include "stage_time.h"

namespace lanvoss::test {

// Puts the library's next objects on the radio of `air`. To be called on the test's thread.
void EnterStage(const std::shared_ptr<StageTime>& time, simulated::Neighbourhood& air);
// Expects that nothing of the library has misused the stage. No object may be left.
void LeaveStage();

}  // namespace lanvoss::test
