#include "world.h"

#include <utility>

namespace lanvoss::bench {
namespace {

platform::Platform current;

}  // namespace

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

std::shared_ptr<LanvossInterface> Open(const platform::Platform& platform, NotifyCallback notify,
                                       const std::string& directory) {
  current = platform;
  auto opened = getLanvossPtr(notify, directory);
  current = {};
  return opened;
}

}  // namespace lanvoss::bench

namespace lanvoss::platform {

Platform CreatePlatform() { return bench::current; }

}  // namespace lanvoss::platform
