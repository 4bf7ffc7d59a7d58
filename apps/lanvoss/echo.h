// Echo requests of the program's own, with their round-trip times.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/system.h"

namespace lanvoss::program {

inline constexpr int kEchoRequests = 4;

// One request to a dotted IPv4 address and the time until its reply; none: no reply came within 3
// s. `number` tells it from the other requests.
std::optional<std::chrono::microseconds> AskForEcho(platform::System& system,
                                                    const std::string& address, int number);

}  // namespace lanvoss::program
