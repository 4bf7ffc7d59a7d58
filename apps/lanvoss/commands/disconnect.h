// lanvoss disconnect: closes the link to a device.
#pragma once

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// Takes the link over, as another program may have left it, or makes it, and closes it.
Outcome RunDisconnect(LanvossInterface& object, const CommandLine& line);

}  // namespace lanvoss::program
