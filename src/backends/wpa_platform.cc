// The library over the real radio on Linux: wpa_supplicant's first adapter with Wi-Fi Direct.
#include <utility>

#include "backends/posix/posix_system.h"
#include "backends/wpa/wpa_radio.h"
#include "watcher/make_lanvoss.h"

std::shared_ptr<LanvossInterface> getLanvossPtr(NotifyCallback notify, std::string directory) {
  using namespace lanvoss;
  const auto system = posix::CreateSystem();
  return MakeLanvoss({system, wpa::CreateRadio(system, "")}, notify, std::move(directory));
}
