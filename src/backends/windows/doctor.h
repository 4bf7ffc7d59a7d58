// What is missing on this machine, and how to fix it.
#pragma once

#include <vector>

#include "backends/windows/machine.h"
#include "platform/finding.h"

namespace lanvoss::windows {

inline constexpr char kHowToAllowRawSockets[] = "run the program as administrator";

std::vector<platform::Finding> Examine(const Machine& machine);

}  // namespace lanvoss::windows
