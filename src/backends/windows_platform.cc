// The DLL, over the machine's radio.
#include <utility>

#include "backends/windows/windows_radio.h"
#include "backends/windows/windows_system.h"
#include "watcher/make_lanvoss.h"

std::shared_ptr<LanvossInterface> getLanvossPtr(NotifyCallback notify, std::string directory) {
  using namespace lanvoss;
  const auto system = windows::CreateSystem();
  return MakeLanvoss({system, windows::CreateRadio(system)}, notify, std::move(directory));
}
