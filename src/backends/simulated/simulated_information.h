// The platform's information about a device, and pairing with it.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "backends/events/event_source.h"
#include "backends/simulated/air_state.h"

namespace lanvoss::simulated {

// A device as it was when it was reported. Whether it is paired is said as of then or of now.
class SimulatedInformation final : public platform::DeviceInformation, public Counted {
 public:
  SimulatedInformation(std::shared_ptr<AirState> owner, std::size_t index, const Peer& peer)
      : Counted(std::move(owner)),
        index_(index),
        id_(peer.id),
        name_(peer.name),
        wasPaired_(peer.paired) {}

  std::u16string Id() override;
  std::u16string Name() override;
  std::shared_ptr<platform::DeviceInformationPairing> Pairing() override;

 private:
  const std::size_t index_;
  const std::u16string id_;
  const std::u16string name_;
  const bool wasPaired_;
};

class SimulatedInformationUpdate final : public platform::DeviceInformationUpdate, public Counted {
 public:
  SimulatedInformationUpdate(std::shared_ptr<AirState> owner, std::u16string id)
      : Counted(std::move(owner)), id_(std::move(id)) {}

  std::u16string Id() override;

 private:
  const std::u16string id_;
};

class SimulatedPairing final : public platform::DeviceInformationPairing, public Counted {
 public:
  SimulatedPairing(std::shared_ptr<AirState> owner, std::size_t index, bool wasPaired)
      : Counted(std::move(owner)), index_(index), wasPaired_(wasPaired) {}

  bool IsPaired() override;
  std::shared_ptr<platform::DeviceInformationCustomPairing> Custom() override;
  void UnpairAsync() override;

 private:
  const std::size_t index_;
  const bool wasPaired_;
};

class SimulatedCustomPairing final : public platform::DeviceInformationCustomPairing,
                                     public Counted,
                                     public std::enable_shared_from_this<SimulatedCustomPairing> {
 public:
  SimulatedCustomPairing(std::shared_ptr<AirState> owner, std::size_t index)
      : Counted(std::move(owner)), index_(index), queue_(air->dispatcher.NewQueue()) {}

  platform::EventToken PairingRequested(PairingRequestedHandler handler) override;
  std::shared_ptr<platform::DevicePairingResult> PairAsync(
      platform::DevicePairingKinds kinds, platform::DevicePairingProtectionLevel minProtectionLevel,
      std::shared_ptr<platform::WiFiDirectConnectionParameters> settings) override;

 private:
  platform::DevicePairingResultStatus PairOnce();
  platform::DevicePairingResultStatus RunCeremony();
  bool AskHandlers(platform::DevicePairingKinds ceremony);

  const std::size_t index_;
  const std::shared_ptr<events::EventQueue> queue_;

  std::mutex mutex_;  // guards everything below
  events::EventSource<PairingRequestedHandler> requested_;
};

class SimulatedParameters final : public platform::WiFiDirectConnectionParameters, public Counted {
 public:
  explicit SimulatedParameters(std::shared_ptr<AirState> owner) : Counted(std::move(owner)) {}

  void GroupOwnerIntent(std::int16_t intent) override;
  void PreferredPairingProcedure(platform::WiFiDirectPairingProcedure procedure) override;

  // Copies the parameters into the record of a request.
  void CopyTo(PairingRequest& request) const;

 private:
  mutable std::mutex mutex_;  // guards everything below
  std::int16_t intent_ = 0;
  platform::WiFiDirectPairingProcedure procedure_ =
      platform::WiFiDirectPairingProcedure::Invitation;
};

}  // namespace lanvoss::simulated
