// The neighbourhood that an installation without a radio shows: a few devices with lifelike
// latencies.
#pragma once

#include "backends/simulated/scenario.h"

namespace lanvoss::simulated {

Scenario DemoScenario();

}  // namespace lanvoss::simulated
