// What the scenario tests stand on. The same scenarios are played on several stages; each test
// program brings one.
#pragma once

#include <memory>
#include <string>

#include "lanvoss/lanvoss.h"

#include "backends/simulated/air.h"
#include "stage_time.h"

namespace lanvoss::test {

// Before the library's first object. To be called on the test's thread.
void EnterStage(const std::shared_ptr<StageTime>& time, simulated::Air& air);
// An object of the library on the radio of `air`.
std::shared_ptr<LanvossInterface> MakeOnStage(simulated::Air& air, NotifyCallback notify,
                                              const std::string& directory);
// Expects that nothing of the library has misused the stage. No object may be left.
void LeaveStage();

}  // namespace lanvoss::test
