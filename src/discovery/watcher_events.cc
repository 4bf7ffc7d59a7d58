// The five events of the platform's watcher. Each runs on a thread of the platform's, through the
// gate; several may run at once. A platform error ends a handler where it is.
#include "base/limits.h"
#include "base/text.h"
#include "registry/device_table.h"
#include "watcher/device_watcher_winrt.h"

namespace lanvoss {

void CDeviceWatcherWinRT::WatchDeviceAdded(platform::DeviceWatcher& sender,
                                           std::shared_ptr<platform::DeviceInformation> info) {
  const std::string name = ToAnsi(info->Name());
  const std::string id = platform_.system->WideToUtf8(info->Id());
  std::string numbers;
  {
    const Lock lock(mutex);
    ++nAddedCount;
    numbers =
        (strWatchName.empty() ? "" : std::to_string(nWatchTry) + "-") + std::to_string(nAddedCount);
  }
  WriteLog(numbers + " WatchDeviceAdded:" + name + " id:" + id.substr(0, id.find('\0')));
  if (RecordDevice(name, id, std::move(info))) {
    NoteCacheChange();
  }
  WriteCache();
  if (TakeFind(name)) {
    ActOnFind(sender, name, id);
  }
}

// Puts a report into the table and notifies the host of a new device or a new name. True when the
// cache file must be written.
bool CDeviceWatcherWinRT::RecordDevice(const std::string& name, const std::string& id,
                                       DeviceTable::Information info) {
  const DeviceRecord record{MacOf(id), name, platform_.system->GetLocalTime()};
  RecordChange change = RecordChange::kNone;
  {
    const Lock lock(mutex);
    change = deviceTable.Report(name, id, record, info);
  }
  if (change != RecordChange::kNone) {
    Notify("watch", name);
  }
  if (change != RecordChange::kNew) {
    const Lock lock(mutex);
    deviceTable.Refresh(id, record);
  }
  return change != RecordChange::kNone;
}

// Whether this report is a find of the watched device; if so, the device counts as found from now.
bool CDeviceWatcherWinRT::TakeFind(const std::string& name) {
  const std::int32_t now = Now();
  const Lock lock(mutex);
  const bool isFind =
      !strWatchName.empty() && strWatchName == name && (nWatchMode == kConnectOnFind || !IsFound());
  if (isFind) {
    tFound = now;
  }
  return isFind;
}

void CDeviceWatcherWinRT::ActOnFind(platform::DeviceWatcher& sender, const std::string& name,
                                    const std::string& id) {
  sender.Stop();
  std::string line;
  {
    const Lock lock(mutex);
    line = "(watch) DeviceWatcher ok Dev=" + name +
           " watch:" + std::to_string(ElapsedMs(tStart, tFound)) + "ms(" +
           std::to_string(nWatchTry) + ")" + FlagsText();
  }
  WriteLog(std::move(line));

  bool connect = false;
  {
    const Lock lock(mutex);
    if (nWatchMode == kFindOnce) {
      strWatchName.clear();
      hEvDone->Set();
    }
    connect = nWatchMode == kConnectOnFind && !bDisConnect && !bConnectting;
  }
  if (connect) {
    ConnDevice(name, id);
  }
}

void CDeviceWatcherWinRT::OnDeviceRemoved(platform::DeviceWatcher&,
                                          platform::DeviceInformationUpdate& update) {
  LogUpdate("OnDeviceRemoved", update);
}

void CDeviceWatcherWinRT::OnDeviceUpdated(platform::DeviceWatcher&,
                                          platform::DeviceInformationUpdate& update) {
  LogUpdate("OnDeviceUpdated", update);
}

void CDeviceWatcherWinRT::LogUpdate(const std::string& what,
                                    platform::DeviceInformationUpdate& update) {
  const std::string id = ToAnsi(update.Id());
  std::string name;
  {
    const Lock lock(mutex);
    name = deviceTable.NameOf(id);
  }
  WriteLog("(watch) " + what + " name=" + name + " id=" + id);
}

// Every pass ends with a stop, and so with OnWatcherStopped.
void CDeviceWatcherWinRT::OnEnumerationCompleted(platform::DeviceWatcher& sender) {
  WriteLog("(watch) DeviceWatcher enumeration completed");
  Notify("watchdone", "DeviceWatcher enumeration completed");
  sender.Stop();
}

// Ends the watch or starts its next pass. A request may begin at any notification and line here, so
// what follows one looks at the fields again.
void CDeviceWatcherWinRT::OnWatcherStopped(platform::DeviceWatcher&) {
  hEvStopped->Set();
  Notify("stopdone", "DeviceWatcher stopped");

  const std::int32_t now = Now();
  std::string lost;  // the line of a watched device that is gone
  bool again = false;
  {
    const Lock lock(mutex);
    const bool connects = nWatchMode == kConnectOnFind;
    const bool isNamed = !strWatchName.empty();
    const bool isReported = deviceTable.InformationOf(strWatchName) != nullptr;
    if (!connects && IsFound() && isNamed && !isReported) {
      lost = "(watch) DeviceWatcher stopped. no Dev=" + strWatchName +
             " nowatch:" + std::to_string(ElapsedMs(tFound, now)) + "ms(" +
             std::to_string(nWatchTry) + ")" + FlagsText();
    } else {
      const bool inTime = !connects || ElapsedMs(tStart, now) < kAttemptLimitMs;
      again = !bDisConnect && strDeviceIp.empty() && isNamed && inTime;
    }
  }
  if (!lost.empty()) {
    WriteLog(std::move(lost));
    hEvDone->Set();
  } else if (again) {
    WriteLog("(watch) DeviceWatcher stopped,re watch");
    StartWatcherAgain();
  } else {
    WriteLog("(watch) DeviceWatcher stopped.");
    const Lock lock(mutex);
    if (!IsFound()) {
      hEvDone->Set();
    }
  }
}

}  // namespace lanvoss
