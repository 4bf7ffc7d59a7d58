// The stage without a platform: the library right on the simulated neighbourhood.
#include "platform/platform.h"
#include "stages/stage.h"

namespace lanvoss::test {
namespace {

platform::Platform current;

}  // namespace

void EnterStage(const std::shared_ptr<StageTime>& /*time*/, simulated::Neighbourhood& air) {
  current = {air.System(), air.Radio()};
}

void LeaveStage() { current = {}; }

}  // namespace lanvoss::test

namespace lanvoss::platform {

Platform CreatePlatform() { return test::current; }

}  // namespace lanvoss::platform
