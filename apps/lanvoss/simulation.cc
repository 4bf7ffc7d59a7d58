#include "simulation.h"

#include <optional>
#include <utility>

#include "backends/events/threads.h"
#include "backends/simulated/demo.h"
#include "backends/simulated/neighbourhood.h"

namespace lanvoss::program {
namespace {

std::optional<Scenario>& WantedScenario() {
  static std::optional<Scenario> scenario;
  return scenario;
}

}  // namespace

Scenario BuiltInScenario() {
  return {.habits = simulated::DemoHabits(), .peers = simulated::DemoPeers()};
}

void Simulate(Scenario scenario) { WantedScenario() = std::move(scenario); }

bool IsSimulationWanted() { return WantedScenario().has_value(); }

platform::Platform SimulatedPlatform(std::shared_ptr<platform::System> system) {
  const Scenario scenario = WantedScenario().value_or(BuiltInScenario());
  simulated::Neighbourhood air(std::move(system), events::RealThreads(), scenario.habits,
                               scenario.seed);
  for (const simulated::Peer& peer : scenario.peers) {
    air.Add(peer);
  }
  return {air.System(), air.Radio()};
}

}  // namespace lanvoss::program
