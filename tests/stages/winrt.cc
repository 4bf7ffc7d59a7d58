// The stage on the Windows Runtime's interfaces, on virtual time: the core calls the Windows
// backend, this the fake Windows Runtime, and this the simulated air.
#include "backends/windows/windows_radio.h"
#include "fake_winrt/fake_winrt.h"
#include "stages/ledger_report.h"
#include "stages/stage.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::test {

const bool kHandlersMayThrow = false;  // the Windows backend ends them

void EnterStage(const std::shared_ptr<StageTime>& time, simulated::Air& air) {
  fake_winrt::Use(air.Radio(), time);
}

std::shared_ptr<LanvossInterface> MakeOnStage(simulated::Air& air, NotifyCallback notify,
                                              const std::string& directory) {
  const auto system = air.System();
  return MakeLanvoss({system, windows::CreateRadio(system)}, notify, directory);
}

void LeaveStage() { ExpectClean(fake_winrt::Finish()); }

}  // namespace lanvoss::test
