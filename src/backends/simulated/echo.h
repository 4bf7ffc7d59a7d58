// The IP side of simulated links: echo requests reach the simulated devices.
#pragma once

#include <memory>

#include "backends/simulated/air_state.h"
#include "platform/system.h"

namespace lanvoss::simulated {

// The system, but its ICMP sockets reach the devices of `air`, unless the platform's habits say
// that they reach the real network.
std::shared_ptr<platform::System> WithEcho(std::shared_ptr<platform::System> beneath,
                                           std::shared_ptr<AirState> air);

}  // namespace lanvoss::simulated
