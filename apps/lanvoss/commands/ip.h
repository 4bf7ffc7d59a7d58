// lanvoss ip: the addresses of a link to a device.
#pragma once

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

Outcome RunIp(LanvossInterface& object, const CommandLine& line);

}  // namespace lanvoss::program
