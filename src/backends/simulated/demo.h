// The neighbourhood that an installation without a radio shows: a few devices with lifelike
// latencies.
#pragma once

#include <vector>

#include "backends/simulated/peer.h"

namespace lanvoss::simulated {

Habits DemoHabits();
std::vector<Peer> DemoPeers();

}  // namespace lanvoss::simulated
