// The embedded default on a machine without a radio: real time, simulated neighbourhood.
#include "backends/posix/posix_system.h"
#include "backends/simulated/demo.h"
#include "backends/simulated/neighbourhood.h"
#include "platform/platform.h"

namespace lanvoss::platform {

Platform CreatePlatform() {
  simulated::Neighbourhood air(posix::CreateSystem(), events::RealThreads(),
                               simulated::DemoHabits());
  for (simulated::Peer& peer : simulated::DemoPeers()) {
    air.Add(std::move(peer));
  }
  return {air.System(), air.Radio()};
}

}  // namespace lanvoss::platform
