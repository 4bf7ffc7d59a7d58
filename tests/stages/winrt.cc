// The stage on the Windows Runtime's interfaces, on virtual time: between the library and the
// simulated neighbourhood stand the Windows backend and the classes of the stand-in radio.
#include "backends/windows/windows_radio.h"
#include "stages/ledger_report.h"
#include "stages/stage.h"
#include "stand_in/stand_in.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::test {

void EnterStage(const std::shared_ptr<StageTime>& time, simulated::Neighbourhood& air) {
  stand_in::Use(air.Radio(), time);
}

std::shared_ptr<LanvossInterface> MakeOnStage(simulated::Neighbourhood& air, NotifyCallback notify,
                                              const std::string& directory) {
  const auto system = air.System();
  return MakeLanvoss({system, windows::CreateRadio(system)}, notify, directory);
}

void LeaveStage() { ExpectClean(stand_in::Finish()); }

}  // namespace lanvoss::test
