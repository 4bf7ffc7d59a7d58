// lanvoss unpair: makes the system forget a device.
#pragma once

#include <stop_token>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// Looks for the device first: only one that the watcher reports can be unpaired.
Outcome RunUnpair(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted);

}  // namespace lanvoss::program
