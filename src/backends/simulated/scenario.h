// A description of the simulated air: its platform's habits and its devices.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "backends/simulated/peer.h"
#include "platform/platform.h"

namespace lanvoss::simulated {

struct Scenario {
  std::uint64_t seed = 1;
  Habits habits = {};
  // When the platform ends a watcher that runs as Aborted, from the beginning.
  std::vector<std::uint32_t> abortsAtMs = {};
  std::vector<Peer> peers = {};
  std::string comment = {};  // for people, in UTF-8
};

// In real time, over `system`.
platform::Platform CreatePlatform(std::shared_ptr<platform::System> system,
                                  const Scenario& scenario);

}  // namespace lanvoss::simulated
