// The check of the current link, and the recovery of one that is up but no longer answers.
#include "base/text.h"
#include "registry/split_text.h"
#include "supervision/ping_host.h"
#include "watcher/device_watcher_winrt.h"

namespace lanvoss {

std::string CDeviceWatcherWinRT::PingCheck() {
  return LifetimeGate::Run(gate, std::string(), [this] { return CheckLink(); });
}

std::string CDeviceWatcherWinRT::CheckLink() {
  const std::string link = DeviceIp();
  const std::vector<std::string_view> addresses = SplitText(link, ",");
  if (addresses.size() < 2 || addresses[1].empty()) {
    return {};
  }
  const std::int32_t begun = Now();
  WriteLog("(watch) ping ...");
  const int replies =
      PingHost(*platform_.system, std::string(addresses[1]), [this] { gate->EndIfDestroyed(); });
  WriteLog("(watch) ping done ret:" + std::to_string(replies) +
           " dt:" + std::to_string(ElapsedMs(begun, Now())) +
           "ms DisConnect:" + std::to_string(IsGivenUp()));

  std::string name;
  switch (BeginRecoveryIfDue(replies, name)) {
    case LinkVerdict::kKeep:
      return {};
    case LinkVerdict::kLost:
      WriteLog("(watch) Ping Failed,Re Pair Failed!" + name);
      return {};
    case LinkVerdict::kRecover:
      Recover(name);
      WaitForAttempt();
      return DeviceIp();
  }
  return {};
}

// Begins a recovery when one is due: from here on the link counts as none. Only one may run between
// two requests of the host.
CDeviceWatcherWinRT::LinkVerdict CDeviceWatcherWinRT::BeginRecoveryIfDue(int replies,
                                                                         std::string& name) {
  const Lock lock(mutex);
  name = strWatchName;
  if (bDisConnect || replies > 0 || name.empty()) {
    return LinkVerdict::kKeep;
  }
  if (bRePair) {
    return LinkVerdict::kLost;
  }
  bRePair = true;
  strDeviceIp.clear();
  gate->Reset(*hEvDone);
  return LinkVerdict::kRecover;
}

// Unpairs, pairs and connects again: on this thread if the watcher has reported the device,
// otherwise through the watcher.
void CDeviceWatcherWinRT::Recover(const std::string& name) {
  if (IsKnown(name)) {
    WriteLog("(watch) Ping Failed,Unpair,Re Pair... " + name);
    ConnDevice(name, *RememberedId(name));
  } else {
    WriteLog("(watch) Ping Failed,Watch,Unpair,Re Pair... " + name);
    StartWatcherAgain();
  }
}

// Whether the watcher has reported the device, so that it can be unpaired and paired.
bool CDeviceWatcherWinRT::IsKnown(const std::string& name) const {
  const Lock lock(mutex);
  return deviceTable.IdOf(name) != nullptr && deviceTable.InformationOf(name) != nullptr;
}

bool CDeviceWatcherWinRT::IsGivenUp() const {
  const Lock lock(mutex);
  return bDisConnect;
}

}  // namespace lanvoss
