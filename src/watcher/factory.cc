// The library's only entry point.
#include <memory>
#include <utility>

#include "lanvoss/lanvoss.h"

#include "platform/platform.h"
#include "watcher/device_watcher_winrt.h"

std::shared_ptr<LanvossInterface> getLanvossPtr(NotifyCallback notify, std::string directory) {
  // Made from the object's own type, the pointer destroys it through that type's destructor: the
  // interface has none to offer.
  return std::shared_ptr<LanvossInterface>(new lanvoss::CDeviceWatcherWinRT(
      lanvoss::platform::CreatePlatform(), notify, std::move(directory)));
}
