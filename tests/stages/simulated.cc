// The stage without a platform: the core directly on the simulated air.
#include "stages/stage.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::test {

const bool kHandlersMayThrow = true;

void EnterStage(const std::shared_ptr<StageTime>& /*time*/, simulated::Air& /*air*/) {}

std::shared_ptr<LanvossInterface> MakeOnStage(simulated::Air& air, NotifyCallback notify,
                                              const std::string& directory) {
  return MakeLanvoss({air.System(), air.Radio()}, notify, directory);
}

void LeaveStage() {}

}  // namespace lanvoss::test
