// Starting and stopping the platform's watcher. A watch is a chain of its enumeration passes.
#include <cstdio>

#include "base/limits.h"
#include "base/text.h"
#include "watcher/device_watcher_winrt.h"
#include "watcher/status_names.h"

namespace lanvoss {
namespace {

constexpr char kKeepWatchingMark = '\n';

std::string StatusName(platform::DeviceWatcherStatus status) {
  return WatcherStatusName(static_cast<std::uint32_t>(status));
}

// The end of the lines with the result of a try to start or stop the watcher.
std::string TryText(int tries, platform::DeviceWatcherStatus status, std::int32_t elapsedMs) {
  return std::to_string(tries) + " status:" + StatusName(status) +
         " dt:" + std::to_string(elapsedMs);
}

bool IsStarted(platform::DeviceWatcher& watcher) {
  return watcher.Status() == platform::DeviceWatcherStatus::Started;
}

}  // namespace

std::int32_t CDeviceWatcherWinRT::StartWatch(std::string name) {
  return LifetimeGate::Run(gate, kFailed, [&] {
    std::int32_t mode = name.empty() ? kConnectOnFind : kFindOnce;
    if (name.starts_with(kKeepWatchingMark)) {
      name.erase(0, 1);
      mode = kKeepWatching;
    }
    {
      const std::int32_t now = Now();
      const Lock lock(mutex);
      nWatchMode = mode;
      nMaxConnectMs = 0;
      ResetAttempt(now);
    }
    return StartWatcher(name);
  });
}

std::int32_t CDeviceWatcherWinRT::StopWatch() {
  return LifetimeGate::Run(gate, kFailed, [this] { return StopWatcher(); });
}

std::int32_t CDeviceWatcherWinRT::StartWatcher(std::string name) {
  {
    const Lock lock(mutex);
    strWatchName = std::move(name);
  }
  return StartWatcherAgain();
}

// The same for the present watch name, which another thread may have changed meanwhile.
std::int32_t CDeviceWatcherWinRT::StartWatcherAgain() {
  std::int32_t result = kFailed;
  try {
    std::string line = "(watch) Start Watcher...for ";
    {
      const Lock lock(mutex);
      line += strWatchName;
    }
    WriteLog(std::move(line));
    if (deviceWatcher != nullptr) {
      if (!IsStarted(*deviceWatcher)) {
        StartPass();
      }
      result = kDone;
    }
    WriteLog("(watch) Start Watcher done");
  } catch (const platform::Error& error) {
    WriteLog("(watch) Start Watcher Err:" + ToAnsi(error.Message()));
    if (deviceWatcher != nullptr) {
      deviceWatcher->Stop();
    }
  }
  return result;
}

// Begins a new pass: starts the watcher again and again until it runs or the time is up.
void CDeviceWatcherWinRT::StartPass() {
  WriteLog("watch start...");
  {
    DeviceTable::Reported forgotten;  // released outside the lock
    const Lock lock(mutex);
    ++nWatchTry;
    nAddedCount = 0;
    if (nWatchMode != kConnectOnFind) {
      forgotten = deviceTable.TakeReported();
    }
  }
  const std::int32_t begun = Now();
  for (int tries = 1;; ++tries) {
    deviceWatcher->Start();
    const std::int32_t elapsed = ElapsedMs(begun, Now());
    const auto status = deviceWatcher->Status();
    if (status == platform::DeviceWatcherStatus::Started || elapsed > kStartLimitMs) {
      WriteLog("watch start ok.do:" + TryText(tries, status, elapsed));
      return;
    }
    WriteLog("watch start.try:" + TryText(tries, status, elapsed));
    gate->Sleep(kStartPauseMs);
  }
}

std::int32_t CDeviceWatcherWinRT::StopWatcher() {
  std::int32_t result = kFailed;
  const auto stop = [&] {
    WriteLog("(watch) Stop Watcher...");
    if (deviceWatcher != nullptr) {
      if (IsStarted(*deviceWatcher)) {
        StopPass();
      }
      result = kDone;
    }
    hEvDone->Set();
    WriteLog("(watch) Stop Watcher done");
  };
  HandleErrors(stop, [this] { WriteLog("(watch) Stop Watcher Err"); });
  return result;
}

// Asks the running watcher to stop until it reports Stopped or the tries have ended.
void CDeviceWatcherWinRT::StopPass() {
  WriteLog("(watch) stop watch ...");
  const std::int32_t begun = Now();
  for (int tries = 1; tries <= kStopTries; ++tries) {
    try {
      gate->Reset(*hEvStopped);
      deviceWatcher->Stop();
      if (!gate->Wait(*hEvStopped, kStopWaitMs)) {
        std::fputs("(watch) stop watch timer out\n", stdout);
      }
      const auto status = deviceWatcher->Status();
      const std::int32_t elapsed = ElapsedMs(begun, Now());
      if (status == platform::DeviceWatcherStatus::Stopped || elapsed > kStopLimitMs) {
        WriteLog("(watch) stop watch ok.do:" + TryText(tries, status, elapsed));
        return;
      }
      WriteLog("(watch) stop watch no.try:" + TryText(tries, status, elapsed));
    } catch (const platform::Error& error) {
      WriteLog("(watch) Error StopWatch: " + ToAnsi(error.Message()) + ".Status is " +
               StatusName(deviceWatcher->Status()) + ". try:" + std::to_string(tries));
    }
    gate->Sleep(kStopPauseMs);
  }
}

}  // namespace lanvoss
