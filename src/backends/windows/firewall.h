// The rules of Windows Firewall.
#pragma once

#include <optional>

#include "backends/windows/machine.h"

namespace lanvoss::windows {

// None: they cannot be read.
std::optional<Firewall> ReadFirewall(platform::System& system);

}  // namespace lanvoss::windows
