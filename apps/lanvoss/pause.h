// A wait that can be ended.
#pragma once

#include <chrono>
#include <stop_token>

namespace lanvoss::program {

// Blocks for `time` at most. False: `ended` was requested before the time was over.
bool Pause(std::chrono::milliseconds time, std::stop_token ended);

}  // namespace lanvoss::program
