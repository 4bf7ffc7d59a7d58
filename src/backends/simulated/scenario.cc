#include "backends/simulated/scenario.h"

#include <utility>

#include "backends/events/threads.h"
#include "backends/simulated/air.h"

namespace lanvoss::simulated {

platform::Platform CreatePlatform(std::shared_ptr<platform::System> system,
                                  const Scenario& scenario) {
  Air air(std::move(system), events::RealThreads(), scenario.habits, scenario.seed);
  for (const Peer& peer : scenario.peers) {
    air.Add(peer);
  }
  for (const std::uint32_t atMs : scenario.abortsAtMs) {
    air.AbortWatchersAfter(atMs);
  }
  return {air.System(), air.Radio()};
}

}  // namespace lanvoss::simulated
