// What is missing on this machine, and how to fix it.
#pragma once

#include <string>
#include <vector>

#include "platform/finding.h"

namespace lanvoss::wpa {

// Looks at everything that reaching a device over this adapter needs. `interface` as for the radio.
std::vector<platform::Finding> Examine(const std::string& interface);

}  // namespace lanvoss::wpa
