// Says what this machine lacks for reaching devices.
#pragma once

#include <string>
#include <vector>

#include "command_line.h"
#include "outcome.h"
#include "platform/finding.h"

namespace lanvoss::program {

using platform::Finding;

// What the system's real radio needs; `radioName` may say which of several. Each kind of system
// looks for itself.
std::vector<Finding> Examine(const std::string& radioName);

Outcome RunDoctor(const CommandLine& line);

}  // namespace lanvoss::program
