// The radio that the program runs on.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "backends/simulated/scenario.h"
#include "platform/finding.h"
#include "platform/platform.h"

namespace lanvoss::program {

// What can be chosen on this system, for people.
std::string RadioNames();
bool IsRadioName(const std::string& name);

// The platform with the radio of that name; without a name, with the system's default. A scenario
// is a radio of its own.
platform::Platform CreatePlatform(const std::optional<std::string>& radioName,
                                  const std::optional<simulated::Scenario>& scenario);

// What the system's real radio needs of the machine; the name may say which of several radios.
std::vector<platform::Finding> Examine(const std::optional<std::string>& radioName);

// How the user gives the program the right to open raw sockets, which the echo probe needs: "do
// so".
std::string HowToAllowRawSockets();

}  // namespace lanvoss::program
