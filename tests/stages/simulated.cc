// The stage without a platform: the library right on the simulated neighbourhood.
#include "stages/stage.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::test {

void EnterStage(const std::shared_ptr<StageTime>& /*time*/, simulated::Neighbourhood& /*air*/) {}

std::shared_ptr<LanvossInterface> MakeOnStage(simulated::Neighbourhood& air, NotifyCallback notify,
                                              const std::string& directory) {
  return MakeLanvoss({air.System(), air.Radio()}, notify, directory);
}

void LeaveStage() {}

}  // namespace lanvoss::test
