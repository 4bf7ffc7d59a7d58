// The air of an installation without a radio: a few devices with realistic latencies.
#pragma once

#include "backends/simulated/scenario.h"

namespace lanvoss::simulated {

Scenario DemoScenario();

}  // namespace lanvoss::simulated
