// The real radio on Linux: the first adapter of wpa_supplicant's that can Wi-Fi Direct.
#include "backends/posix/posix_system.h"
#include "backends/wpa/wpa_radio.h"
#include "platform/platform.h"

namespace lanvoss::platform {

Platform CreatePlatform() {
  const auto system = posix::CreateSystem();
  return {system, wpa::CreateRadio(system, "")};
}

}  // namespace lanvoss::platform
