// What an address request came to that gave no address.
#pragma once

#include <string>

#include "outcome.h"

namespace lanvoss::program {

// Tells from the situation how far the attempt for the device `name` got.
Outcome NoLink(const std::string& name);

}  // namespace lanvoss::program
