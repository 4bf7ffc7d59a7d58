// lanvoss devices: the cache as a table.
#pragma once

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// Reads the cache and changes nothing; nobody is looked for.
Outcome RunDevices(const CommandLine& line);

}  // namespace lanvoss::program
