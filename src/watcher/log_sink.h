// The log, and the pairing ceremony that writes to it. Knows nothing of the watcher object, so it
// can be handed to whatever has to speak to the host.
#pragma once

#include <memory>
#include <string>

#include "lanvoss/lanvoss.h"

#include "platform/system.h"
#include "platform/wifi_direct.h"
#include "watcher/lifetime_gate.h"

namespace lanvoss {

class LogSink {
 public:
  LogSink(platform::System& system, platform::WiFiDirect& wifiDirect,
          std::shared_ptr<LifetimeGate> gate, NotifyCallback notify);

  // Writes one line with a time stamp to standard output and passes its text to the host as "info".
  // What the host throws goes through.
  void WriteLog(std::string text) const;

  // Pairs one device by the confirm-only ceremony, accepted without the user, asking to own the
  // group. Blocks until the platform reports the end, without a time limit. False when that is the
  // status Failed. Platform errors go through.
  bool RequestPairDeviceAsync(std::shared_ptr<platform::DeviceInformationPairing> pairing) const;

 private:
  // On a thread of the platform's, while RequestPairDeviceAsync blocks.
  void OnPairingRequested(platform::DeviceInformationCustomPairing& sender,
                          platform::DevicePairingRequestedEventArgs& args) const;

  platform::System& system_;
  platform::WiFiDirect& wifiDirect_;
  const std::shared_ptr<LifetimeGate> gate_;
  const NotifyCallback pfnNotify;  // may be null
};

}  // namespace lanvoss
