// The stage of the DLL: the file that a host loads, in real time, on the fake Windows Runtime.
#include "fake_winrt/fake_winrt.h"
#include "stages/ledger_report.h"
#include "stages/stage.h"

namespace lanvoss::test {

const bool kHandlersMayThrow = false;  // the Windows backend ends them

void EnterStage(const std::shared_ptr<StageTime>& time, simulated::Air& air) {
  fake_winrt::Use(air.Radio(), time);
}

std::shared_ptr<LanvossInterface> MakeOnStage(simulated::Air& /*air*/, NotifyCallback notify,
                                              const std::string& directory) {
  return getLanvossPtr(notify, directory);
}

void LeaveStage() { ExpectClean(fake_winrt::Finish()); }

}  // namespace lanvoss::test
