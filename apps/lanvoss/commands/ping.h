// lanvoss ping: a link to a device, checked.
#pragma once

#include <stop_token>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// Connects, checks the link and asks for its addresses again, as a host has to do it: the check
// may leave the device paired but not connected. The object's host function must be HearCheck.
Outcome RunPing(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted);

}  // namespace lanvoss::program
