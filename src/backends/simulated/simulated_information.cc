#include "backends/simulated/simulated_information.h"

#include <atomic>

#include "backends/simulated/simulated_link.h"

namespace lanvoss::simulated {
namespace {

using platform::DevicePairingResultStatus;

// How long a device lets its user see the request before it asks the handlers.
constexpr std::uint32_t kAskAfterMs = 5;

// One pairing request to the handlers. It is answered when no reference to it remains: the handlers
// have returned, and every deferral is released.
class Ceremony final : public platform::DevicePairingRequestedEventArgs, public Counted {
 public:
  struct Answer {
    explicit Answer(platform::System& system) : given(system.CreateManualResetEvent(false)) {}
    const std::unique_ptr<platform::Event> given;
    std::atomic<bool> accepted = false;
  };

  Ceremony(std::shared_ptr<AirState> owner, platform::DevicePairingKinds kind,
           std::shared_ptr<Answer> answer)
      : Counted(std::move(owner)),
        kind_(kind),
        answer_(std::move(answer)),
        open_(OpenUntilHeld()) {}

  platform::DevicePairingKinds PairingKind() override {
    air->faults.Enter(Call::kPairingKind);
    return kind_;
  }
  std::shared_ptr<platform::Deferral> GetDeferral() override {
    air->faults.Enter(Call::kGetDeferral);
    return open_;
  }
  void Accept() override {
    air->faults.Enter(Call::kAccept);
    answer_->accepted = true;
  }

 private:
  class Holder final : public platform::Deferral, public Counted {
   public:
    Holder(std::shared_ptr<AirState> owner, std::shared_ptr<Answer> answer)
        : Counted(std::move(owner)), answer_(std::move(answer)) {}
    ~Holder() override { answer_->given->Set(); }

   private:
    const std::shared_ptr<Answer> answer_;
  };
  std::shared_ptr<Holder> OpenUntilHeld() { return std::make_shared<Holder>(air, answer_); }

  const platform::DevicePairingKinds kind_;
  const std::shared_ptr<Answer> answer_;
  const std::shared_ptr<Holder> open_;
};

class SimulatedPairingResult final : public platform::DevicePairingResult, public Counted {
 public:
  SimulatedPairingResult(std::shared_ptr<AirState> owner, DevicePairingResultStatus status)
      : Counted(std::move(owner)), status_(status) {}

  DevicePairingResultStatus Status() override {
    air->faults.Enter(Call::kPairingStatus);
    return status_;
  }

 private:
  const DevicePairingResultStatus status_;
};

}  // namespace

std::u16string SimulatedInformation::Id() {
  air->faults.Enter(Call::kInformationId);
  return id_;
}

std::u16string SimulatedInformation::Name() {
  air->faults.Enter(Call::kInformationName);
  return name_;
}

std::shared_ptr<platform::DeviceInformationPairing> SimulatedInformation::Pairing() {
  if (!air->faults.Enter(Call::kInformationPairing) ||
      !air->StateOf(index_).peer.hasPairingObject) {
    return nullptr;
  }
  return std::make_shared<SimulatedPairing>(air, index_, wasPaired_);
}

std::u16string SimulatedInformationUpdate::Id() {
  air->faults.Enter(Call::kUpdateId);
  return id_;
}

bool SimulatedPairing::IsPaired() {
  air->faults.Enter(Call::kIsPaired);
  return air->CurrentHabits().pairedAsReported ? wasPaired_ : air->StateOf(index_).peer.paired;
}

std::shared_ptr<platform::DeviceInformationCustomPairing> SimulatedPairing::Custom() {
  air->faults.Enter(Call::kCustomPairing);
  return std::make_shared<SimulatedCustomPairing>(air, index_);
}

void SimulatedPairing::UnpairAsync() {
  air->faults.Enter(Call::kUnpairAsync);
  const std::uint32_t unpairMs = air->StateOf(index_).peer.unpairMs;
  air->delayedActions.After(unpairMs, [self = air->weak_from_this(), index = index_] {
    if (const auto owner = self.lock()) {
      owner->Update(index, [](PeerState& state) { state.peer.paired = false; });
      owner->EndLinks(index, owner->CurrentHabits().onUnpair);
    }
  });
}

platform::EventToken SimulatedCustomPairing::PairingRequested(PairingRequestedHandler handler) {
  air->faults.Enter(Call::kPairingRequestedSubscribe);
  const std::lock_guard lock(mutex_);
  return requested_.Subscribe(std::move(handler));
}

std::shared_ptr<platform::DevicePairingResult> SimulatedCustomPairing::PairAsync(
    platform::DevicePairingKinds kinds, platform::DevicePairingProtectionLevel minProtectionLevel,
    std::shared_ptr<platform::WiFiDirectConnectionParameters> settings) {
  air->faults.Enter(Call::kPairAsync);
  air->Update(index_, [&](PeerState& state) {
    state.latestPairing.kinds = kinds;
    state.latestPairing.protection = minProtectionLevel;
    if (const auto* parameters = dynamic_cast<const SimulatedParameters*>(settings.get())) {
      parameters->CopyTo(state.latestPairing);
    }
    ++state.pairings;
  });
  return std::make_shared<SimulatedPairingResult>(air, PairOnce());
}

// One ceremony at a time.
DevicePairingResultStatus SimulatedCustomPairing::PairOnce() {
  if (air->Update(index_, [](PeerState& state) { return std::exchange(state.pairing, true); })) {
    return DevicePairingResultStatus::OperationAlreadyInProgress;
  }
  try {
    const auto status = RunCeremony();
    air->Update(index_, [](PeerState& state) { state.pairing = false; });
    return status;
  } catch (...) {
    air->Update(index_, [](PeerState& state) { state.pairing = false; });
    throw;
  }
}

DevicePairingResultStatus SimulatedCustomPairing::RunCeremony() {
  const PeerState state = air->StateOf(index_);
  if (state.peer.paired) {
    return DevicePairingResultStatus::AlreadyPaired;
  }
  {
    const std::lock_guard lock(mutex_);
    if (requested_.IsEmpty()) {
      return DevicePairingResultStatus::RequiredHandlerNotRegistered;
    }
  }
  air->system->Sleep(kAskAfterMs);
  if (!AskHandlers(state.peer.ceremony)) {
    return DevicePairingResultStatus::RejectedByHandler;
  }
  const std::uint32_t rest = state.peer.pairMs > kAskAfterMs ? state.peer.pairMs - kAskAfterMs : 0;
  if (!air->CompleteAs(NextOutcome(state.peer.pairings, state.pairings), rest)) {
    return DevicePairingResultStatus::NotPaired;
  }
  const bool paired = state.peer.pairingStatus == DevicePairingResultStatus::Paired ||
                      state.peer.pairingStatus == DevicePairingResultStatus::AlreadyPaired;
  air->Update(index_, [paired](PeerState& now) {
    now.peer.paired = paired;
    now.linksOfPairing = 0;
  });
  return state.peer.pairingStatus;
}

// Whether the handlers accept the ceremony.
bool SimulatedCustomPairing::AskHandlers(platform::DevicePairingKinds ceremony) {
  const auto answer = std::make_shared<Ceremony::Answer>(*air->system);
  {
    const auto args = std::make_shared<Ceremony>(air, ceremony, answer);
    const std::lock_guard lock(mutex_);
    air->Raise(queue_, requested_.Subscribers(),
               [self = shared_from_this(), args](const PairingRequestedHandler& handler) {
                 handler(*self, *args);
               });
  }
  answer->given->Wait(platform::kWaitForever);
  return answer->accepted;
}

void SimulatedParameters::GroupOwnerIntent(std::int16_t intent) {
  air->faults.Enter(Call::kGroupOwnerIntent);
  const std::lock_guard lock(mutex_);
  intent_ = intent;
}

void SimulatedParameters::PreferredPairingProcedure(
    platform::WiFiDirectPairingProcedure procedure) {
  air->faults.Enter(Call::kPreferredPairingProcedure);
  const std::lock_guard lock(mutex_);
  procedure_ = procedure;
}

void SimulatedParameters::CopyTo(PairingRequest& request) const {
  const std::lock_guard lock(mutex_);
  request.groupOwnerIntent = intent_;
  request.procedure = procedure_;
}

}  // namespace lanvoss::simulated
