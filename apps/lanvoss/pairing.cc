#include "pairing.h"

#include <utility>

#include "backends/posix/posix_system.h"
#include "backends/simulated/demo.h"
#include "backends/simulated/neighbourhood.h"
#include "backends/simulated/threads.h"
#include "platform/platform.h"

namespace lanvoss::program {
namespace {

Scenario& ChosenScenario() {
  static Scenario scenario{.habits = simulated::DemoHabits(), .peers = simulated::DemoPeers()};
  return scenario;
}

}  // namespace

void UseScenario(Scenario scenario) { ChosenScenario() = std::move(scenario); }

bool CanSendEchoes() {
  return ChosenScenario().habits.simulatesEcho ||
         posix::CreateSystem()->OpenIcmpSocket() != nullptr;
}

}  // namespace lanvoss::program

namespace lanvoss::platform {

Platform CreatePlatform() {
  const program::Scenario& scenario = program::ChosenScenario();
  simulated::Neighbourhood air(posix::CreateSystem(), simulated::RealThreads(), scenario.habits,
                               scenario.seed);
  for (const simulated::Peer& peer : scenario.peers) {
    air.Add(peer);
  }
  return {air.System(), air.Radio()};
}

}  // namespace lanvoss::platform
