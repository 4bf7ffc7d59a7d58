// What the DLL stands on: the machine's own radio.
#include "backends/windows/windows_radio.h"
#include "backends/windows/windows_system.h"
#include "platform/platform.h"

namespace lanvoss::platform {

Platform CreatePlatform() {
  const auto system = windows::CreateSystem();
  return {system, windows::CreateRadio(system)};
}

}  // namespace lanvoss::platform
