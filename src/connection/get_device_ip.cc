// The host's request for a link to a named device.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "base/limits.h"
#include "base/text.h"
#include "watcher/device_watcher_winrt.h"

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
  ConnectOnFind();
  if (IsConnected(name)) {
    WriteLog("(watch) Dev " + name + " is Connected,return ip=" + DeviceIp());
    return DeviceIp();
  }
  BeginAttempt();
  if (!request.direct) {
    StartWatcher(name);
  } else if (const auto id = RememberedId(name)) {
    WriteLog("(watch) Connect Dev for id,name=" + name + " id=" + *id);
    ConnectById(name);
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
  const std::int32_t now = Now();
  std::int32_t elapsed = 0;
  {
    const Lock lock(mutex);
    if (tDisConnected < 1 || gapMs < 1) {
      return;
    }
    elapsed = ElapsedMs(tDisConnected, now);
  }
  // Negative when the clock has wrapped meanwhile; then the whole gap is kept once more.
  const std::int32_t remaining = gapMs - std::max(elapsed, 0);
  if (remaining > 0) {
    WriteLog("(watch) Con Dev name=" + name + ",Sleep=" + std::to_string(remaining) + "ms");
    gate->Sleep(static_cast<std::uint32_t>(remaining));
  }
}

// From here on every find connects.
void CDeviceWatcherWinRT::ConnectOnFind() {
  const Lock lock(mutex);
  nWatchMode = kConnectOnFind;
}

bool CDeviceWatcherWinRT::IsConnected(const std::string& name) const {
  const Lock lock(mutex);
  return name == strWatchName && !strDeviceIp.empty();
}

void CDeviceWatcherWinRT::BeginAttempt() {
  const std::int32_t now = Now();
  const Lock lock(mutex);
  ResetAttempt(now);
  tConnected = tStart;
  nFromIdTry = 0;
  bRePair = false;
  gate->Reset(*hEvDone);
}

std::optional<std::string> CDeviceWatcherWinRT::RememberedId(const std::string& name) const {
  const Lock lock(mutex);
  const std::string* id = deviceTable.IdOf(name);
  return id == nullptr ? std::nullopt : std::optional(*id);
}

// ConnDevice on this thread. Meanwhile a find by the watcher starts no connection of its own.
void CDeviceWatcherWinRT::ConnectById(const std::string& name) {
  const auto setConnectting = [this](bool connectting) {
    const Lock lock(mutex);
    bConnectting = connectting;
  };
  setConnectting(true);
  HandleErrors([&] { ConnDevice(name, *RememberedId(name)); },
               [&] {
                 setConnectting(false);
                 throw;
               });
  setConnectting(false);
}

// Blocks until the attempt has finished or has taken too long, and then stops the watcher.
void CDeviceWatcherWinRT::WaitForAttempt() {
  if (!gate->Wait(*hEvDone, kDoneWaitMs)) {
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
