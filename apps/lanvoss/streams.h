// The program's standard streams.
#pragma once

namespace lanvoss::program {

// To be called first of all. Makes the library's log appear line by line, also through a pipe, and
// lets the program go on when nobody reads it.
void PrepareStreams();

}  // namespace lanvoss::program
