// The library on a simulated radio that answers at once, in real time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "lanvoss/lanvoss.h"

#include "backends/simulated/air.h"
#include "platform/platform.h"
#include "recording_host.h"

namespace lanvoss::bench {

using test::RecordingHost;

inline constexpr char kCamera[] = "Cam";

// No step takes time, and a pass continues until it is stopped.
simulated::Habits HabitsWithoutLatency();
// A device that is paired and answers at once.
simulated::Peer PeerWithoutLatency(std::u16string name, std::u16string id = {});

// An object of the library on the given platform, for the RecordingHost that there is.
std::shared_ptr<LanvossInterface> Open(const platform::Platform& platform,
                                       const std::string& directory);

}  // namespace lanvoss::bench
