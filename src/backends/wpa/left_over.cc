#include "backends/wpa/left_over.h"

#include <algorithm>
#include <vector>

#include "backends/wpa/adapter.h"
#include "backends/wpa/groups.h"
#include "backends/wpa/message.h"
#include "backends/wpa/supplicant.h"

namespace lanvoss::wpa {

bool CloseLinksTo(const std::string& deviceName, const std::string& interface) {
  const Adapter adapter = LookForAdapter(interface);
  if (adapter.problem != AdapterProblem::kNothing) {
    return false;
  }
  const Supplicant supplicant(adapter.socketPath, [](const Message&) {});
  bool isClosed = false;
  for (const Group& group : GroupsOf(supplicant)) {
    const std::vector<std::string> devices = DevicesIn(supplicant, group);
    const bool hasDevice =
        std::any_of(devices.begin(), devices.end(), [&](const std::string& address) {
          return LineOf(supplicant.Ask("P2P_PEER " + address), "device_name") == deviceName;
        });
    if (hasDevice) {
      RemoveGroup(supplicant, group.interface);
      isClosed = true;
    }
  }
  return isClosed;
}

}  // namespace lanvoss::wpa
