// What the program stands on: a simulated radio, unless an adapter is chosen.
#include <optional>
#include <string>

#include "backends/posix/posix_system.h"
#include "backends/wpa/wpa_radio.h"
#include "chosen_adapter.h"
#include "platform/platform.h"
#include "radio.h"
#include "simulation.h"

namespace lanvoss::program {
namespace {

constexpr char kSimulated[] = "simulated";
constexpr char kWpa[] = "wpa";
constexpr char kWpaWithInterface[] = "wpa:";

std::optional<std::string>& Chosen() {
  static std::optional<std::string> interface;
  return interface;
}

}  // namespace

std::string RadioNames() { return "simulated (default), wpa or wpa:INTERFACE"; }

bool ChooseRadio(const std::string& name) {
  if (name == kWpa) {
    Chosen() = "";
  } else if (name.starts_with(kWpaWithInterface) && name != kWpaWithInterface) {
    Chosen() = name.substr(name.find(':') + 1);
  } else {
    return name == kSimulated;
  }
  return true;
}

std::optional<std::string> ChosenAdapter() { return Chosen(); }

}  // namespace lanvoss::program

namespace lanvoss::platform {

Platform CreatePlatform() {
  const auto system = posix::CreateSystem();
  if (const auto interface = program::ChosenAdapter()) {
    return {system, wpa::CreateRadio(system, *interface)};
  }
  return program::SimulatedPlatform(system);
}

}  // namespace lanvoss::platform
