// lanvoss watch: the devices around, or one of them.
#pragma once

#include <stop_token>
#include <string>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// The host's function that the object of a watch has to be made with.
void HearWatch(std::string kind, std::string message);

// Returns when the watch has ended or `interrupted` is requested.
Outcome RunWatch(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted);

}  // namespace lanvoss::program
