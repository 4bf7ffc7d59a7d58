// The real radio that the user has chosen.
#pragma once

#include <optional>
#include <string>

namespace lanvoss::program {

// Its network interface, empty for any; none: no real radio was chosen.
std::optional<std::string> ChosenAdapter();

}  // namespace lanvoss::program
