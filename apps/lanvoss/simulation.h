// The simulated neighbourhood that the program can stand on.
#pragma once

#include <memory>

#include "platform/platform.h"
#include "platform/system.h"
#include "scenario.h"

namespace lanvoss::program {

Scenario BuiltInScenario();

// Asks for a simulated neighbourhood. To be called before the library's object is made.
void Simulate(Scenario scenario);

bool IsSimulationWanted();

// In real time, over `system`. It is the built-in neighbourhood unless Simulate has named another.
platform::Platform SimulatedPlatform(std::shared_ptr<platform::System> system);

}  // namespace lanvoss::program
