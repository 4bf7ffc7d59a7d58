// lanvoss run: operations one after the other on one object.
#pragma once

#include <stop_token>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// Runs the operations of the command line, or else those on the lines of standard input, and prints
// the result of each as "> OPERATION -> RESULT". The object's host function must be HearCheck.
Outcome RunOperations(LanvossInterface& object, const CommandLine& line,
                      std::stop_token interrupted);

}  // namespace lanvoss::program
