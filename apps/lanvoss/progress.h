// The line that tells on a terminal how far an operation is.
#pragma once

#include <string>

namespace lanvoss::program {

// "12 s, devices: 4, passes: 2, opens: 1, looking for Cam-7F21"; empty while nothing runs.
std::string Progress();

}  // namespace lanvoss::program
