// What the program stands on: there is no backend for a radio of this system yet, so always a
// simulated one.
#include "backends/posix/posix_system.h"
#include "platform/platform.h"
#include "simulation.h"

namespace lanvoss::platform {

Platform CreatePlatform() { return program::SimulatedPlatform(posix::CreateSystem()); }

}  // namespace lanvoss::platform
