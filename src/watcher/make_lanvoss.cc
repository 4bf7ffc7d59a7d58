#include "watcher/make_lanvoss.h"

#include <utility>

#include "watcher/device_watcher_winrt.h"

namespace lanvoss {

std::shared_ptr<LanvossInterface> MakeLanvoss(platform::Platform platform, NotifyCallback notify,
                                              std::string directory) {
  // Made from the object's own type, the pointer destroys it through that type's destructor: the
  // interface has none to offer.
  return std::shared_ptr<LanvossInterface>(
      new CDeviceWatcherWinRT(std::move(platform), notify, std::move(directory)));
}

}  // namespace lanvoss
