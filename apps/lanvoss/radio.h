// The radio that the program runs on.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "backends/simulated/scenario.h"
#include "platform/finding.h"
#include "platform/platform.h"

namespace lanvoss::program {

// Needs no hardware and no rights.
inline constexpr char kSimulatedRadio[] = "simulated";

// The names to choose from on this system, as a text for people.
std::string RadioNames();
bool IsRadioName(const std::string& name);

// The platform with the radio of that name, or with the system's default radio. A scenario replaces
// the radio.
platform::Platform CreatePlatform(const std::optional<std::string>& radioName,
                                  const std::optional<simulated::Scenario>& scenario);

// What the real radio needs on this machine, and whether it is there. The name may choose one.
std::vector<platform::Finding> Examine(const std::optional<std::string>& radioName);

// How the user gives the program the right to open raw sockets. The echo probe needs it.
std::string HowToAllowRawSockets();

}  // namespace lanvoss::program
