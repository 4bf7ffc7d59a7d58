#include "watcher/device_watcher_winrt.h"

#include "base/limits.h"
#include "base/text.h"
#include "registry/cache_file.h"

namespace lanvoss {

CDeviceWatcherWinRT::CDeviceWatcherWinRT(platform::Platform platform, NotifyCallback notify,
                                         std::string directory)
    : platform_(std::move(platform)),
      gate(std::make_shared<LifetimeGate>(*platform_.system)),
      hEvDone(CreateEventOrThrow(*platform_.system, true)),
      hEvStopped(CreateEventOrThrow(*platform_.system, true)),
      hEvStatus(CreateEventOrThrow(*platform_.system, true)),
      pfnNotify(notify),
      logSink(*platform_.system, *platform_.wifiDirect, gate, notify) {
  try {
    CreateDeviceWatcher();
    strCachePath = CachePath(std::move(directory));
    LoadCache();
  } catch (...) {
    Release();
    throw;
  }
}

CDeviceWatcherWinRT::~CDeviceWatcherWinRT() {
  gate->BeginDestruction();
  try {
    StopWatcher();
  } catch (...) {
    // The host's callback threw at one of the log lines. A destructor cannot pass that on.
  }
  Release();
}

void CDeviceWatcherWinRT::CreateDeviceWatcher() {
  const auto selector = platform_.wifiDirect->GetDeviceSelector(
      platform::WiFiDirectDeviceSelectorType::AssociationEndpoint);
  deviceWatcher = platform_.wifiDirect->CreateWatcher(selector, {platform::kInformationElements});
  if (deviceWatcher == nullptr) {
    return;
  }

  // Each handler holds the gate but not the object, which may be gone when a late event arrives.
  const auto throughGate = [this](auto handler) {
    return [this, handler, shared = gate](auto& sender, auto&&... args) {
      LifetimeGate::Run(shared, [&] { (this->*handler)(sender, args...); });
    };
  };
  using Self = CDeviceWatcherWinRT;
  tokAdded = deviceWatcher->Added(throughGate(&Self::WatchDeviceAdded));
  tokRemoved = deviceWatcher->Removed(throughGate(&Self::OnDeviceRemoved));
  tokUpdated = deviceWatcher->Updated(throughGate(&Self::OnDeviceUpdated));
  tokEnumCompleted =
      deviceWatcher->EnumerationCompleted(throughGate(&Self::OnEnumerationCompleted));
  tokStopped = deviceWatcher->Stopped(throughGate(&Self::OnWatcherStopped));
}

std::string CDeviceWatcherWinRT::CachePath(std::string directory) {
  if (directory.empty()) {
    directory = platform_.system->CurrentDirectory(kDirectoryCapacity);
  }
  return directory + kCacheFileName;
}

// What construction built up, in the order of destruction. After it no handler touches the object.
void CDeviceWatcherWinRT::Release() {
  if (deviceWatcher != nullptr) {
    // Each one alone, so that a failure does not stop the others. It cannot be reported. The gate
    // refuses the events of a subscription that remains.
    const auto revoke = [this](auto how, platform::EventToken token) {
      try {
        ((*deviceWatcher).*how)(token);
      } catch (...) {
      }
    };
    using Watcher = platform::DeviceWatcher;
    revoke(&Watcher::RevokeAdded, tokAdded);
    revoke(&Watcher::RevokeRemoved, tokRemoved);
    revoke(&Watcher::RevokeUpdated, tokUpdated);
    revoke(&Watcher::RevokeEnumerationCompleted, tokEnumCompleted);
    revoke(&Watcher::RevokeStopped, tokStopped);
  }
  gate->Close();
  deviceWatcher.reset();
  hEvDone.reset();
  hEvStopped.reset();
  hEvStatus.reset();
}

void CDeviceWatcherWinRT::Notify(std::string kind, std::string message) const {
  LifetimeGate::CallHost(gate, pfnNotify, std::move(kind), std::move(message));
}

std::string CDeviceWatcherWinRT::ToAnsi(std::u16string_view wide) const {
  return lanvoss::ToAnsi(*platform_.system, wide);
}

std::string CDeviceWatcherWinRT::FlagsText() const {
  return " bConnectting = " + std::to_string(bConnectting) +
         " bDisConnect = " + std::to_string(bDisConnect);
}

void CDeviceWatcherWinRT::ResetAttempt(std::int32_t now) {
  tStart = now;
  tFound = tStart;
  nWatchTry = 0;
  strDeviceIp.clear();
  bDisConnect = false;
}

std::string CDeviceWatcherWinRT::StepTimesText() const {
  return "watch:" + std::to_string(ElapsedMs(tStart, tFound)) + "ms(" + std::to_string(nWatchTry) +
         "),fromid:" + std::to_string(ElapsedMs(tFound, tConnected)) + "ms(" +
         std::to_string(nFromIdTry) + ")";
}

}  // namespace lanvoss
