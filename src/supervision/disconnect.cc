// Ending and undoing a link.
#include "base/limits.h"
#include "watcher/device_watcher_winrt.h"

namespace lanvoss {

std::int32_t CDeviceWatcherWinRT::AbortConnect(std::string /*unused*/) {
  return LifetimeGate::Run(gate, kDone, [this] {
    const Lock lock(mutex);
    bDisConnect = true;
    nMaxConnectMs = 0;
    tDisConnected = 0;
    return kDone;
  });
}

std::int32_t CDeviceWatcherWinRT::DisConnect(std::string /*unused*/) {
  constexpr std::int32_t kLinkGone = 1;
  constexpr std::int32_t kLinkHeld = 0;
  return LifetimeGate::Run(gate, kLinkGone, [&] {
    {
      const Lock lock(mutex);
      strWatchName.clear();
      strDeviceIp.clear();
      bDisConnect = true;
    }
    return DoDisConnect() == 0 ? kLinkGone : kLinkHeld;
  });
}

std::int32_t CDeviceWatcherWinRT::Unpair(std::string name) {
  return LifetimeGate::Run(gate, kDone, [&] {
    const auto info = InformationOf(name);
    if (const auto pairing = info == nullptr ? nullptr : info->Pairing(); pairing != nullptr) {
      pairing->UnpairAsync();
      WriteLog("(watch) UnpairAsync OK");
    } else {
      WriteLog("(watch) Watch again,try...");
    }
    return kDone;
  });
}

// Closes the device object and lets it go once the link is down. 0 when none is held at the end, 1
// when one still is.
std::int32_t CDeviceWatcherWinRT::DoDisConnect() {
  WriteLog("(watch) DoDisConnect ...");
  try {
    if (HeldDevice() != nullptr) {
      CloseDevice();
    }
  } catch (const platform::CancelledError& error) {
    WriteLog("(watch) DoDisConnect Err:" + ToAnsi(error.Message()));
  }
  WriteLog(std::string("(watch) DoDisConnect done,do:") + (HeldDevice() ? "err" : "ok"));
  const std::int32_t now = Now();
  const Lock lock(mutex);
  tDisConnected = now;
  return wfdDevice == nullptr ? 0 : 1;
}

void CDeviceWatcherWinRT::CloseDevice() {
  // Not reset between the tries: once the status has been reported, later waits return at once.
  gate->Reset(*hEvStatus);
  for (int tries = 1; tries <= kCloseTries; ++tries) {
    if (const auto device = HeldDevice(); device != nullptr) {
      device->Close();
    }
    if (!gate->Wait(*hEvStatus, kCloseWaitMs)) {
      WriteLog("(watch) DoDisConnect timer out,try:" + std::to_string(tries));
    }
    const auto device = HeldDevice();
    if (device == nullptr ||
        device->ConnectionStatus() == platform::WiFiDirectConnectionStatus::Disconnected) {
      WriteLog("(watch) DoDisConnect OK, do :" + std::to_string(tries));
      LetGo(device);
      return;
    }
  }
}

// Holds no device any more, unless a connection on another thread has stored a newer one meanwhile.
void CDeviceWatcherWinRT::LetGo(const std::shared_ptr<platform::WiFiDirectDevice>& device) {
  const Lock lock(mutex);
  if (wfdDevice == device) {
    wfdDevice.reset();  // not the last reference: the caller has one
  }
}

}  // namespace lanvoss
