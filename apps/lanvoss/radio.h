// The radio that the program runs on.
#pragma once

#include <optional>
#include <string>

#include "backends/simulated/scenario.h"
#include "platform/platform.h"

namespace lanvoss::program {

// What can be chosen on this system, for people.
std::string RadioNames();
bool IsRadioName(const std::string& name);

// The platform with the radio of that name; without a name, with the system's default. A scenario
// is a radio of its own.
platform::Platform CreatePlatform(const std::optional<std::string>& radioName,
                                  const std::optional<simulated::Scenario>& scenario);

}  // namespace lanvoss::program
