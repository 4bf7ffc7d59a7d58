// The one implementation of LanvossInterface: all state of discovery, connection and supervision.
//
// Its operations and handlers are in the folders of their subjects; each declaration below says
// where.
//
// Threads: operations run on the host's threads, handlers on the platform's, all at once. Fields
// marked LANVOSS_GUARDED_BY(mutex) are used under the lock alone; the others do not change
// between construction and destruction. The order in which effects become visible is the order of
// the steps in each routine.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "lanvoss/lanvoss.h"

#include "base/guarded.h"
#include "platform/platform.h"
#include "registry/device_table.h"
#include "watcher/lifetime_gate.h"
#include "watcher/log_sink.h"

namespace lanvoss {

// What a find of the watched device leads to.
enum WatchMode : std::int32_t {
  kConnectOnFind = 0,  // every find connects; passes follow for kAttemptLimitMs
  kFindOnce = 1,       // the first find ends the watch
  kKeepWatching = 2,   // passes follow until one no longer sees the device
};

// Results of the operations that return a number.
inline constexpr std::int32_t kDone = 0;
inline constexpr std::int32_t kFailed = -1;

class CDeviceWatcherWinRT : public LanvossInterface {
 public:
  // Makes the events and the platform's watcher and loads the cache, during which the host is
  // already notified. Throws what the platform raises.
  CDeviceWatcherWinRT(platform::Platform platform, NotifyCallback notify, std::string directory);

  std::int32_t StartWatch(std::string name) override;      // discovery/watch.cc
  std::int32_t StopWatch() override;                       // discovery/watch.cc
  std::string GetDeviceIp(std::string request) override;   // connection/get_device_ip.cc
  std::int32_t AbortConnect(std::string unused) override;  // supervision/disconnect.cc
  std::int32_t DisConnect(std::string unused) override;    // supervision/disconnect.cc
  std::int32_t Unpair(std::string name) override;          // supervision/disconnect.cc
  std::string PingCheck() override;                        // supervision/ping_check.cc

  // Ends the library's own waits on other threads, stops the watcher, and waits until no operation
  // or handler runs on another thread.
  virtual ~CDeviceWatcherWinRT();

  CDeviceWatcherWinRT(const CDeviceWatcherWinRT&) = delete;
  CDeviceWatcherWinRT& operator=(const CDeviceWatcherWinRT&) = delete;

 private:
  // watcher/: construction, destruction, and what every folder uses
  void CreateDeviceWatcher();
  std::string CachePath(std::string directory);
  void Release();
  void WriteLog(std::string text) const { logSink.WriteLog(std::move(text)); }
  // Notifies the host with one of the direct kinds.
  void Notify(std::string kind, std::string message) const;
  std::string ToAnsi(std::u16string_view wide) const;
  std::int32_t Now() const { return platform_.system->Clock(); }
  // The end of the log lines that say why a find or a watch did not continue.
  std::string FlagsText() const LANVOSS_REQUIRES(mutex);
  // What every watch and every request begins with.
  void ResetAttempt(std::int32_t now) LANVOSS_REQUIRES(mutex);
  // How long the steps of the attempt took, and their tries.
  std::string StepTimesText() const LANVOSS_REQUIRES(mutex);
  bool IsFound() const LANVOSS_REQUIRES(mutex) { return tFound != tStart; }

  // watcher/cache.cc
  void LoadCache();
  void NoteCacheChange();
  void WriteCache();
  bool BeginCacheWrite();
  std::string TakeCacheContent();
  bool KeepCacheChange();
  bool EndCacheWrite();

  // discovery/watch.cc: the bodies of StartWatch and StopWatch, for callers inside the gate
  std::int32_t StartWatcher(std::string name);
  std::int32_t StartWatcherAgain();
  void StartPass();
  std::int32_t StopWatcher();
  void StopPass();

  // discovery/watcher_events.cc: the five handlers of the platform's watcher
  void WatchDeviceAdded(platform::DeviceWatcher& sender,
                        std::shared_ptr<platform::DeviceInformation> info);
  void OnDeviceRemoved(platform::DeviceWatcher& sender, platform::DeviceInformationUpdate& update);
  void OnDeviceUpdated(platform::DeviceWatcher& sender, platform::DeviceInformationUpdate& update);
  void OnEnumerationCompleted(platform::DeviceWatcher& sender);
  void OnWatcherStopped(platform::DeviceWatcher& sender);
  void LogUpdate(const std::string& what, platform::DeviceInformationUpdate& update);
  bool TakeFind(const std::string& name);
  bool RecordDevice(const std::string& name, const std::string& id, DeviceTable::Information info);
  void ActOnFind(platform::DeviceWatcher& sender, const std::string& name, const std::string& id);

  // connection/get_device_ip.cc
  std::string RequestDeviceIp(const std::string& text);
  void KeepGap(const std::string& name, std::int32_t gapMs);
  void ConnectOnFind();
  bool IsConnected(const std::string& name) const;
  void BeginAttempt();
  std::optional<std::string> RememberedId(const std::string& name) const;
  void ConnectById(const std::string& name);
  void WaitForAttempt();
  std::string FailureText(const std::string& name) const;
  std::string DeviceIp() const;

  // connection/conn_device.cc
  void ConnDevice(std::string name, std::string id);
  void PairDevice(platform::DeviceInformation& info);
  void UnpairAndWait(platform::DeviceInformation& info);
  bool IsRecovering() const;
  void DropOldDevice();
  void OpenDevice(const std::string& name, const std::u16string& id);
  bool BeginOpenRequest(std::int32_t now);
  void ReportLink(const std::string& name,
                  const std::shared_ptr<platform::WiFiDirectDevice>& device);
  void StampConnected(std::int32_t now);
  std::string ConnectedText(const std::string& name) const;
  void OnConnectionStatusChanged(platform::WiFiDirectDevice& sender);
  DeviceTable::Information InformationOf(const std::string& name) const;
  std::string AddressText(const std::shared_ptr<platform::HostName>& host) const;
  std::shared_ptr<platform::WiFiDirectDevice> HeldDevice() const;
  void HoldDevice(std::shared_ptr<platform::WiFiDirectDevice> device);

  // supervision/disconnect.cc
  std::int32_t DoDisConnect();
  void CloseDevice();
  void LetGo(const std::shared_ptr<platform::WiFiDirectDevice>& device);

  // supervision/ping_check.cc
  enum class LinkVerdict { kKeep, kRecover, kLost };
  std::string CheckLink();
  LinkVerdict BeginRecoveryIfDue(int replies, std::string& name);
  void Recover(const std::string& name);
  bool IsKnown(const std::string& name) const;
  bool IsGivenUp() const;

  // First, so that it outlives every other member.
  const platform::Platform platform_;
  const std::shared_ptr<LifetimeGate> gate;

  mutable Mutex mutex;

  // The current attempt and link. Clock stamps are readings of System::Clock in milliseconds.
  std::string strDeviceIp LANVOSS_GUARDED_BY(mutex);  // "local,remote"; empty without a link
  std::string strWatchName LANVOSS_GUARDED_BY(mutex);
  bool bRePair LANVOSS_GUARDED_BY(mutex) = false;  // the next ConnDevice unpairs first
  // Given up by the host, or reported down by the platform.
  bool bDisConnect LANVOSS_GUARDED_BY(mutex) = false;
  // A direct request runs ConnDevice on the host's thread.
  bool bConnectting LANVOSS_GUARDED_BY(mutex) = false;
  std::int32_t nWatchMode LANVOSS_GUARDED_BY(mutex) = kConnectOnFind;
  std::int32_t tStart LANVOSS_GUARDED_BY(mutex) = 0;
  std::int32_t nAddedCount LANVOSS_GUARDED_BY(mutex) = 0;  // reports of the current pass
  std::int32_t tFound LANVOSS_GUARDED_BY(mutex) = 0;       // equal to tStart until the find
  std::int32_t nWatchTry LANVOSS_GUARDED_BY(mutex) = 0;    // watcher starts of the attempt
  std::int32_t tConnected LANVOSS_GUARDED_BY(mutex) = 0;
  std::int32_t nFromIdTry LANVOSS_GUARDED_BY(mutex) = 0;  // open requests of the attempt
  std::string strCachePath;

  // The thread that is going to wait resets it; the thread that ends the wait sets it.
  std::unique_ptr<platform::Event> hEvDone;     // the attempt has finished
  std::unique_ptr<platform::Event> hEvStopped;  // the watcher has stopped
  std::unique_ptr<platform::Event> hEvStatus;   // the link's status has changed

  const NotifyCallback pfnNotify;  // may be null
  DeviceTable deviceTable LANVOSS_GUARDED_BY(mutex);
  // Of WriteCache: somebody is writing; the table has changed since the latest content was taken.
  bool bCacheWriting LANVOSS_GUARDED_BY(mutex) = false;
  bool bCacheChanged LANVOSS_GUARDED_BY(mutex) = false;

  std::shared_ptr<platform::DeviceWatcher> deviceWatcher;  // none when the platform gave none
  platform::EventToken tokAdded = 0;
  platform::EventToken tokRemoved = 0;
  platform::EventToken tokUpdated = 0;
  platform::EventToken tokEnumCompleted = 0;
  platform::EventToken tokStopped = 0;

  const LogSink logSink;
  std::shared_ptr<platform::WiFiDirectDevice> wfdDevice LANVOSS_GUARDED_BY(mutex);
  // The longest attempt since StartWatch or AbortConnect.
  std::int32_t nMaxConnectMs LANVOSS_GUARDED_BY(mutex) = 0;
  std::int32_t tDisConnected LANVOSS_GUARDED_BY(mutex) = 0;  // 0: no disconnect to keep a gap from
};

}  // namespace lanvoss
