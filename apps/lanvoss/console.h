// The program's standard streams.
#pragma once

#include <string>

#include "outcome.h"

namespace lanvoss::program {

// To be called first of all. Makes the library's log appear line by line, also through a pipe, and
// lets the program go on when nobody reads it.
void PrepareStreams();

// Writes one line to standard error.
void Complain(const std::string& text);

// Writes what the run came to and returns its exit code.
int Report(const Outcome& outcome);

}  // namespace lanvoss::program
