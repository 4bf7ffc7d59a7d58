// What the scenario tests run on. The same scenarios run on several stages; each test program has
// one.
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
// Whether the air sees the exceptions that leave the library's handlers.
extern const bool kHandlersMayThrow;
// Expects that the library has not misused the stage. No object may remain.
void LeaveStage();

}  // namespace lanvoss::test
