// The stage on the Windows Runtime's interfaces, on virtual time: between the library and the
// simulated neighbourhood stand the Windows backend and the classes of the stand-in radio.
#include "backends/windows/windows_radio.h"
#include "platform/platform.h"
#include "stages/ledger_report.h"
#include "stages/stage.h"
#include "stand_in/stand_in.h"

namespace lanvoss::test {
namespace {

platform::Platform current;

}  // namespace

void EnterStage(const std::shared_ptr<StageTime>& time, simulated::Neighbourhood& air) {
  stand_in::Use(air.Radio(), time);
  current = {air.System(), windows::CreateRadio(air.System())};
}

void LeaveStage() {
  current = {};
  ExpectClean(stand_in::Finish());
}

}  // namespace lanvoss::test

namespace lanvoss::platform {

Platform CreatePlatform() { return test::current; }

}  // namespace lanvoss::platform
