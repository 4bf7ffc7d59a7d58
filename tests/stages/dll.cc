// The stage of the DLL: the very file that a host loads, in real time, on the classes of the
// stand-in radio.
#include "stages/ledger_report.h"
#include "stages/stage.h"
#include "stand_in/stand_in.h"

namespace lanvoss::test {

void EnterStage(const std::shared_ptr<StageTime>& time, simulated::Neighbourhood& air) {
  stand_in::Use(air.Radio(), time);
}

std::shared_ptr<LanvossInterface> MakeOnStage(simulated::Neighbourhood& /*air*/,
                                              NotifyCallback notify, const std::string& directory) {
  return getLanvossPtr(notify, directory);
}

void LeaveStage() { ExpectClean(stand_in::Finish()); }

}  // namespace lanvoss::test
