// The IP side of simulated links: echo requests reach the simulated devices.
#pragma once

#include <memory>

#include "backends/simulated/air_state.h"
#include "platform/system.h"

namespace lanvoss::simulated {

// The system beneath, but its ICMP sockets lead to the devices of `air`, unless the platform's
// habits leave them to the system.
std::shared_ptr<platform::System> WithEcho(std::shared_ptr<platform::System> beneath,
                                           std::shared_ptr<AirState> air);

}  // namespace lanvoss::simulated
