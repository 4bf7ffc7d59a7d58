#pragma once

#include <functional>
#include <string>

#include "platform/system.h"

namespace lanvoss {

// Sends four ICMP echo requests to a dotted IPv4 address or a host name and returns how many of
// them it answered, 0 to 4; 0 also for a host that does not exist (with a line on standard output)
// and without the right to open raw sockets. Blocks for 3 s for each request that is not answered,
// and longer while other ICMP traffic keeps arriving. `beforeReceive` is called each time before it
// blocks; what it throws ends the probe.
int PingHost(
    platform::System& system, const std::string& host,
    const std::function<void()>& beforeReceive = [] {});

}  // namespace lanvoss
