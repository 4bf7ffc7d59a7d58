// The command that draws a saved log.
#pragma once

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

Outcome RunTimeline(const CommandLine& line);

}  // namespace lanvoss::program
