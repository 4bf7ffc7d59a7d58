// The library on a simulated radio that answers at once, in real time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "lanvoss/lanvoss.h"

#include "backends/simulated/neighbourhood.h"
#include "platform/platform.h"

namespace lanvoss::bench {

inline constexpr char kCamera[] = "Cam";

// No step takes time, and a pass goes on until it is stopped.
simulated::Habits HabitsWithoutLatency();
// A device that is paired and answers at once.
simulated::Peer PeerWithoutLatency(std::u16string name, std::u16string id = {});

// An object of the library on the given platform.
std::shared_ptr<LanvossInterface> Open(const platform::Platform& platform, NotifyCallback notify,
                                       const std::string& directory);

}  // namespace lanvoss::bench
