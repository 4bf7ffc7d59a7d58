#include "raw_sockets.h"

namespace lanvoss::program {

std::string HowToAllowRawSockets() { return "run the program as administrator"; }

}  // namespace lanvoss::program
