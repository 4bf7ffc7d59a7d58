// A limit for the end of the program.
#pragma once

#include <thread>

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// While it lives, the program takes its leave of the library. That waits for event handlers, which
// can sit in a pairing that never ends; after kFarewellLimit the process reports its outcome and
// ends all the same.
class Farewell {
 public:
  Farewell(const CommandLine& line, Outcome outcome);

 private:
  std::jthread limit_;
};

}  // namespace lanvoss::program
