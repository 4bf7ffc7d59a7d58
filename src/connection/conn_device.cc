// From a known device to a working link with addresses.
#include <algorithm>
#include <cstdio>

#include "base/limits.h"
#include "base/text.h"
#include "watcher/device_watcher_winrt.h"
#include "watcher/status_names.h"

namespace lanvoss {

// One connection attempt. Ends by setting hEvDone and stopping the watcher, with or without a link.
// A platform error ends it without both, so a waiting request reaches its own time-out.
void CDeviceWatcherWinRT::ConnDevice(std::string name, std::string id) {
  try {
    WriteLog("(watch) ConnDevice... name=" + name + " id=" + id);
    const std::u16string deviceId = platform_.system->Utf8ToWide(id);
    if (const auto info = InformationOf(name); info != nullptr) {
      PairDevice(*info);
    }
    try {
      DropOldDevice();
      OpenDevice(name, deviceId);
    } catch (const platform::CancelledError&) {
      WriteLog("(watch) FromIdAsync was canceled by user");
    }
    if (const auto device = HeldDevice(); device != nullptr) {
      ReportLink(name, device);
    } else {
      WriteLog("(watch) wfdDevice is null, return");
    }
    hEvDone->Set();
    if (deviceWatcher != nullptr) {
      deviceWatcher->Stop();
    }
  } catch (const platform::Error& error) {
    WriteLog("(watch) ConnDevice Err:" + ToAnsi(error.Message()));
  }
}

// Pairs a device that the watcher has reported and the system does not know yet; unpairs it first
// when a recovery asked for that. Whatever comes of it, the link is tried. A device without a
// pairing object is neither unpaired nor paired.
void CDeviceWatcherWinRT::PairDevice(platform::DeviceInformation& info) {
  if (IsRecovering()) {
    UnpairAndWait(info);
  }
  WriteLog("(watch) RequestPairDeviceAsync ...");
  const auto pairing = info.Pairing();
  if (pairing != nullptr && !pairing->IsPaired() && !logSink.RequestPairDeviceAsync(pairing)) {
    std::fputs("(watch) RequestPairDeviceAsync ret\n ", stdout);
    gate->Sleep(kPairingFailedPauseMs);
  }
  WriteLog("(watch) RequestPairDeviceAsync done");
}

// Unpairs the device and waits until that has taken its link down.
void CDeviceWatcherWinRT::UnpairAndWait(platform::DeviceInformation& info) {
  gate->Reset(*hEvStatus);
  WriteLog("(watch) UnpairAsync ...");
  const auto pairing = info.Pairing();
  if (pairing == nullptr) {
    return;
  }
  pairing->UnpairAsync();
  // The status report of the link ends the wait. Without a link none comes.
  if (!gate->Wait(*hEvStatus, kUnpairWaitMs)) {
    std::fputs("unpair timer out\n", stdout);
  }
}

bool CDeviceWatcherWinRT::IsRecovering() const {
  const Lock lock(mutex);
  return bRePair;
}

void CDeviceWatcherWinRT::DropOldDevice() {
  if (HeldDevice() != nullptr) {
    DoDisConnect();
    WriteLog("(watch) DisConnect, watch FromIdAsync ...");
  } else {
    WriteLog("(watch) FromIdAsync ...");
  }
}

// Asks for the device until there is one, the tries have ended or the attempt is given up.
void CDeviceWatcherWinRT::OpenDevice(const std::string& name, const std::u16string& id) {
  for (int tries = 1; tries <= kOpenTries; ++tries) {
    const std::int32_t begun = Now();
    if (!BeginOpenRequest(begun)) {
      return;
    }
    HoldDevice(platform_.wifiDirect->FromIdAsync(id));
    WriteLog("(watch) FromIdAsync done dt:" + std::to_string(ElapsedMs(begun, Now())) + "ms");
    if (HeldDevice() != nullptr) {
      return;
    }
    gate->Sleep(kOpenPauseMs);
    WriteLog("(watch) wfdDevice is null,Re FromIdAsync:" + std::to_string(tries) + " " + name);
  }
}

// Counts the next open request. False: none may begin any more.
bool CDeviceWatcherWinRT::BeginOpenRequest(std::int32_t now) {
  std::string abortion;
  {
    const Lock lock(mutex);
    const std::int32_t elapsed = ElapsedMs(tStart, now);
    if (elapsed <= kAttemptLimitMs && !bDisConnect) {
      ++nFromIdTry;
      return true;
    }
    abortion = "(watch) wfdDevice is null,Re FromIdAsync outtime abort DisConnect:" +
               std::to_string(bDisConnect) + " dt:" + std::to_string(elapsed) + "ms";
  }
  WriteLog(std::move(abortion));
  return false;
}

// Reads the addresses of an open link and notifies the host.
void CDeviceWatcherWinRT::ReportLink(const std::string& name,
                                     const std::shared_ptr<platform::WiFiDirectDevice>& device) {
  device->ConnectionStatusChanged([this, shared = gate](auto& sender) {
    LifetimeGate::Run(shared, [&] { OnConnectionStatusChanged(sender); });
  });
  const auto pair = device->GetConnectionEndpointPairs()->GetAt(0);
  const std::string local = AddressText(pair->LocalHostName());
  const std::string remote = AddressText(pair->RemoteHostName());
  if (!remote.empty()) {  // without one the device cannot be reached, and the host asks again
    const Lock lock(mutex);
    strDeviceIp = local + "," + remote;
  }
  StampConnected(Now());
  WriteLog(ConnectedText(name) + " IPAddress: loc:" + local + " remote:" + remote);
  if (!remote.empty()) {
    Notify("deviceip", remote);
  }
}

// The connection step of the attempt ends now.
void CDeviceWatcherWinRT::StampConnected(std::int32_t now) {
  const Lock lock(mutex);
  tConnected = now;
  nMaxConnectMs = std::max(nMaxConnectMs, ElapsedMs(tStart, tConnected));
}

// How long the attempt and its steps took.
std::string CDeviceWatcherWinRT::ConnectedText(const std::string& name) const {
  const Lock lock(mutex);
  const std::int32_t total = ElapsedMs(tStart, tConnected);
  return "(watch) Devices connected on L2 layer, connecting to name(" + name +
         "),time:" + std::to_string(total) + "ms(" + std::to_string(nMaxConnectMs) + ")," +
         StepTimesText();
}

// On a thread of the platform's, as long as the device object lives.
void CDeviceWatcherWinRT::OnConnectionStatusChanged(platform::WiFiDirectDevice& sender) {
  if (sender.ConnectionStatus() == platform::WiFiDirectConnectionStatus::Disconnected) {
    const Lock lock(mutex);
    bDisConnect = true;
    strDeviceIp.clear();
  }
  hEvStatus->Set();
  WriteLog("(watch) Connection status changed: " +
           ConnectionStatusName(static_cast<std::int32_t>(sender.ConnectionStatus())));
}

// None for a device that the watcher has not reported.
DeviceTable::Information CDeviceWatcherWinRT::InformationOf(const std::string& name) const {
  const Lock lock(mutex);
  return deviceTable.InformationOf(name);
}

// The host's address text; empty for an endpoint without a host name.
std::string CDeviceWatcherWinRT::AddressText(
    const std::shared_ptr<platform::HostName>& host) const {
  return host == nullptr ? std::string() : platform_.system->WideToUtf8(host->DisplayName());
}

std::shared_ptr<platform::WiFiDirectDevice> CDeviceWatcherWinRT::HeldDevice() const {
  const Lock lock(mutex);
  return wfdDevice;
}

// Takes the place of the device held so far. What is let go is released after the lock.
void CDeviceWatcherWinRT::HoldDevice(std::shared_ptr<platform::WiFiDirectDevice> device) {
  const Lock lock(mutex);
  wfdDevice.swap(device);
}

}  // namespace lanvoss
