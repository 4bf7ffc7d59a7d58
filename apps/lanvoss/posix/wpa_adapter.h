// The real radio in the names of radios.
#pragma once

#include <optional>
#include <string>

namespace lanvoss::program {

// The network interface that the name of a real radio gives, empty when it leaves that open; none
// for any other name.
std::optional<std::string> WpaInterfaceOf(const std::string& radioName);

}  // namespace lanvoss::program
