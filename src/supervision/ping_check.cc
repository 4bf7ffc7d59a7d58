// The check of the current link.
#include "watcher/device_watcher_winrt.h"

namespace lanvoss {

// Without a probe there is nothing to find out and nothing to recover: an empty text, as for a link
// that answers.
std::string CDeviceWatcherWinRT::PingCheck() { return {}; }

}  // namespace lanvoss
