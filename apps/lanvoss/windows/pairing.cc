// What the program stands on: the machine's own radio, unless a simulated one is wanted.
#include "backends/windows/windows_radio.h"
#include "backends/windows/windows_system.h"
#include "platform/platform.h"
#include "radio.h"
#include "simulation.h"

namespace lanvoss::program {

std::string RadioNames() { return "windows (default) or simulated"; }

bool ChooseRadio(const std::string& name) {
  if (name == "simulated") {
    Simulate(BuiltInScenario());
  }
  return name == "simulated" || name == "windows";
}

}  // namespace lanvoss::program

namespace lanvoss::platform {

Platform CreatePlatform() {
  const auto system = windows::CreateSystem();
  if (program::IsSimulationWanted()) {
    return program::SimulatedPlatform(system);
  }
  return {system, windows::CreateRadio(system)};
}

}  // namespace lanvoss::platform
