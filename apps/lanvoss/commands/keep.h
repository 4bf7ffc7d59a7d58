// lanvoss keep: a link that is there for as long as the program runs.
#pragma once

#include <stop_token>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// Prints each change of the link. Ends only when `interrupted` is requested.
Outcome RunKeep(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted);

}  // namespace lanvoss::program
