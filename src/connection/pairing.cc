// The pairing ceremony.
#include <cstdio>
#include <utility>

#include "base/limits.h"
#include "base/text.h"
#include "watcher/log_sink.h"
#include "watcher/status_names.h"

namespace lanvoss {

bool LogSink::RequestPairDeviceAsync(
    std::shared_ptr<platform::DeviceInformationPairing> pairing) const {
  const auto parameters = wifiDirect_.CreateConnectionParameters();
  parameters->GroupOwnerIntent(kGroupOwnerIntent);
  parameters->PreferredPairingProcedure(
      platform::WiFiDirectPairingProcedure::GroupOwnerNegotiation);

  const auto custom = pairing->Custom();
  custom->PairingRequested([this, gate = gate_](auto& sender, auto& args) {
    LifetimeGate::Run(gate, [&] { OnPairingRequested(sender, args); });
  });

  WriteLog("PairAsync... GoIntent:" + std::to_string(kGroupOwnerIntent));
  const std::int32_t begun = system_.Clock();
  const auto result =
      custom->PairAsync(platform::DevicePairingKinds::ConfirmOnly,
                        platform::DevicePairingProtectionLevel::Default, parameters);
  WriteLog("PairAsync done dt:" + std::to_string(ElapsedMs(begun, system_.Clock())) + "ms");
  const auto status = result->Status();
  WriteLog("PairAsync Status: " + PairingStatusName(static_cast<std::int32_t>(status)));
  // Every other status lets the connection be tried: it may come up all the same.
  return status != platform::DevicePairingResultStatus::Failed;
}

void LogSink::OnPairingRequested(platform::DeviceInformationCustomPairing&,
                                 platform::DevicePairingRequestedEventArgs& args) const {
  std::printf("OnPairingRequested:%d\n ", static_cast<int>(args.PairingKind()));
  // Held until this returns; its release lets the ceremony continue.
  const auto deferral = args.GetDeferral();
  const auto kind = args.PairingKind();
  if (kind == platform::DevicePairingKinds::ConfirmOnly ||
      kind == platform::DevicePairingKinds::DisplayPin) {
    args.Accept();
  }
}

}  // namespace lanvoss
