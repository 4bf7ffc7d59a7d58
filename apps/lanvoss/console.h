// What the program says by itself.
#pragma once

#include <string>

#include "outcome.h"

namespace lanvoss::program {

// Writes one line to standard error.
void Complain(const std::string& text);

// Writes what the run came to and returns its exit code.
int Report(const Outcome& outcome);

}  // namespace lanvoss::program
