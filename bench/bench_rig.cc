#include "bench_rig.h"

#include <utility>

#include "watcher/make_lanvoss.h"

namespace lanvoss::bench {

simulated::Habits HabitsWithoutLatency() {
  return {.enumerationMs = simulated::kNever, .stopMs = 0, .statusReportMs = 0};
}

simulated::Peer PeerWithoutLatency(std::u16string name, std::u16string id) {
  return {.name = std::move(name),
          .id = std::move(id),
          .paired = true,
          .appearMs = 0,
          .openMs = 0,
          .closeMs = 0};
}

std::shared_ptr<LanvossInterface> Open(const platform::Platform& platform,
                                       const std::string& directory) {
  return MakeLanvoss(platform, &RecordingHost::OnNotify, directory);
}

}  // namespace lanvoss::bench
