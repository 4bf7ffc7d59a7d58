// The host's request for a link to a named device.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "watcher/device_watcher_winrt.h"
#include "watcher/limits.h"
#include "watcher/text.h"

namespace lanvoss {
namespace {

struct Request {
  bool direct = false;     // connect at once to the remembered id
  std::int32_t gapMs = 0;  // to keep from the last disconnect
  std::string name;
};

// The leading number of a text; 0 when there is none, the nearest 32-bit value when it is beyond.
std::int32_t ParseGap(const std::string& text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const long long gap = std::strtoll(text.c_str(), nullptr, 10);
  return static_cast<std::int32_t>(std::clamp<long long>(gap, Limits::min(), Limits::max()));
}

// "NAME", "GAP\nNAME" or "\nNAME".
Request ParseRequest(const std::string& text) {
  const auto lineFeed = text.find('\n');
  if (lineFeed == std::string::npos) {
    return {.name = text};
  }
  return {.direct = lineFeed == 0,
          .gapMs = ParseGap(text.substr(0, lineFeed)),
          .name = text.substr(lineFeed + 1)};
}

}  // namespace

std::string CDeviceWatcherWinRT::GetDeviceIp(std::string request) {
  return LifetimeGate::Run(gate, std::string(), [&] {
    try {
      return RequestDeviceIp(request);
    } catch (const platform::CancelledError&) {
      WriteLog("(watch) Connect Err");
      return DeviceIp();
    }
  });
}

std::string CDeviceWatcherWinRT::RequestDeviceIp(const std::string& text) {
  if (text.empty()) {
    WriteLog("(watch) Dev name is null,return ip=''");
    return {};
  }
  const Request request = ParseRequest(text);
  const std::string& name = request.name;

  KeepGap(name, request.gapMs);
  if (std::string address = ConnectedAddress(name); !address.empty()) {
    WriteLog("(watch) Dev " + name + " is Connected,return ip=" + address);
    return address;
  }
  BeginAttempt();
  if (!request.direct) {
    StartWatcher(name);
  } else if (const auto id = RememberedId(name)) {
    WriteLog("(watch) Connect Dev for id,name=" + name + " id=" + *id);
    ConnectById(name, *id);
  } else {
    WriteLog("(watch) Connect Dev for watch ... " + name);
    StartWatcher(name);
  }
  WaitForAttempt();

  std::string address = DeviceIp();
  if (address.empty()) {
    WriteLog(FailureText(name));
    address = DeviceIp();
  }
  return address;
}

// Waits until the last disconnect is `gapMs` ago.
void CDeviceWatcherWinRT::KeepGap(const std::string& name, std::int32_t gapMs) {
  std::int32_t disconnected = 0;
  {
    const Lock lock(mutex);
    disconnected = tDisConnected;
  }
  if (disconnected < 1 || gapMs < 1) {
    return;
  }
  const std::int32_t elapsed = ElapsedMs(disconnected, Now());
  // Negative: longer ago than the clock's 24 days can tell, and so than any gap.
  if (elapsed >= 0 && elapsed < gapMs) {
    const std::int32_t remaining = gapMs - elapsed;
    WriteLog("(watch) Con Dev name=" + name + ",Sleep=" + std::to_string(remaining) + "ms");
    platform_.system->Sleep(static_cast<std::uint32_t>(remaining));
  }
}

// The address of the link when it is a link to `name`, else empty. From here on finds connect.
std::string CDeviceWatcherWinRT::ConnectedAddress(const std::string& name) {
  const Lock lock(mutex);
  nWatchMode = kConnectOnFind;
  return name == strWatchName ? strDeviceIp : std::string();
}

void CDeviceWatcherWinRT::BeginAttempt() {
  const std::int32_t now = Now();
  const Lock lock(mutex);
  ResetAttempt(now);
  tConnected = tStart;
  nFromIdTry = 0;
  bRePair = false;
  hEvDone->Reset();
}

std::optional<std::string> CDeviceWatcherWinRT::RememberedId(const std::string& name) const {
  const Lock lock(mutex);
  const std::string* id = deviceTable.IdOf(name);
  return id == nullptr ? std::nullopt : std::optional(*id);
}

// ConnDevice on this thread. Meanwhile a find by the watcher starts no connection of its own.
void CDeviceWatcherWinRT::ConnectById(const std::string& name, const std::string& id) {
  const auto setConnectting = [this](bool connectting) {
    const Lock lock(mutex);
    bConnectting = connectting;
  };
  setConnectting(true);
  try {
    ConnDevice(name, id);
  } catch (const ObjectGone&) {
    throw;
  } catch (...) {
    setConnectting(false);
    throw;
  }
  setConnectting(false);
}

// Blocks until the attempt has finished or has taken too long, and then stops the watcher.
void CDeviceWatcherWinRT::WaitForAttempt() {
  if (!hEvDone->Wait(kDoneWaitMs)) {
    StopWatcher();
    std::fputs("watch timer out\n", stdout);
  }
}

std::string CDeviceWatcherWinRT::DeviceIp() const {
  const Lock lock(mutex);
  return strDeviceIp;
}

std::string CDeviceWatcherWinRT::FailureText(const std::string& name) const {
  const std::int32_t now = Now();
  const Lock lock(mutex);
  return "(watch) Devices connected failed, connecting to name(" + name +
         "),time:" + std::to_string(ElapsedMs(tStart, now)) + "ms," + StepTimesText();
}

}  // namespace lanvoss
