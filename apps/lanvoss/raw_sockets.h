// The right that the echo probe needs of the system.
#pragma once

#include <string>

namespace lanvoss::program {

// How the user lets this program open raw sockets: "do so".
std::string HowToAllowRawSockets();

}  // namespace lanvoss::program
