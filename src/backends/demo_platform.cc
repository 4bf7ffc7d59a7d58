// The library for machines without a radio: simulated devices in real time.
#include <utility>

#include "backends/posix/posix_system.h"
#include "backends/simulated/demo.h"
#include "watcher/make_lanvoss.h"

std::shared_ptr<LanvossInterface> getLanvossPtr(NotifyCallback notify, std::string directory) {
  using namespace lanvoss;
  return MakeLanvoss(simulated::CreatePlatform(posix::CreateSystem(), simulated::DemoScenario()),
                     notify, std::move(directory));
}
