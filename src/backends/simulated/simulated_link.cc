#include "backends/simulated/simulated_link.h"

#include <cstdio>
#include <optional>
#include <utility>

namespace lanvoss::simulated {
namespace {

// How long the platform looks for a device that is not there.
constexpr std::uint32_t kNobodyAnswersMs = 500;

class SimulatedHostName final : public platform::HostName, public Counted {
 public:
  SimulatedHostName(std::shared_ptr<AirState> owner, std::u16string address)
      : Counted(std::move(owner)), address_(std::move(address)) {}

  std::u16string DisplayName() override {
    air->faults.Enter(Call::kDisplayName);
    return address_;
  }

 private:
  const std::u16string address_;
};

class SimulatedEndpointPair final : public platform::EndpointPair, public Counted {
 public:
  SimulatedEndpointPair(std::shared_ptr<AirState> owner, AddressPair addresses)
      : Counted(std::move(owner)), addresses_(std::move(addresses)) {}

  std::shared_ptr<platform::HostName> LocalHostName() override { return NameOf(addresses_.local); }
  std::shared_ptr<platform::HostName> RemoteHostName() override {
    return NameOf(addresses_.remote);
  }

 private:
  std::shared_ptr<platform::HostName> NameOf(const std::optional<std::u16string>& address) {
    if (!air->faults.Enter(Call::kHostNameOf) || !address) {
      return nullptr;
    }
    return std::make_shared<SimulatedHostName>(air, *address);
  }

  const AddressPair addresses_;
};

class SimulatedEndpointPairView final : public platform::EndpointPairView, public Counted {
 public:
  SimulatedEndpointPairView(std::shared_ptr<AirState> owner, std::vector<AddressPair> pairs)
      : Counted(std::move(owner)), pairs_(std::move(pairs)) {}

  std::shared_ptr<platform::EndpointPair> GetAt(std::uint32_t index) override {
    air->faults.Enter(Call::kEndpointPairAt);
    if (index >= pairs_.size()) {
      throw platform::Error(platform::kErrorBounds,
                            u"The operation attempted to access data outside the valid range");
    }
    return std::make_shared<SimulatedEndpointPair>(air, pairs_[index]);
  }

 private:
  const std::vector<AddressPair> pairs_;
};

std::u16string MessageOf(std::uint32_t hresult) {
  if (hresult == platform::kErrorNotFound) {
    return u"Element not found.";
  }
  char text[] = "Error 0x00000000";
  std::snprintf(text, sizeof text, "Error 0x%08X", hresult);
  return hresult == platform::kErrorFail ? u"Unspecified error" : platform::Utf8ToUtf16(text);
}

}  // namespace

platform::WiFiDirectConnectionStatus SimulatedLink::ConnectionStatus() {
  air->faults.Enter(Call::kConnectionStatus);
  return IsUp() ? platform::WiFiDirectConnectionStatus::Connected
                : platform::WiFiDirectConnectionStatus::Disconnected;
}

platform::EventToken SimulatedLink::ConnectionStatusChanged(
    platform::PlainHandler<platform::WiFiDirectDevice> handler) {
  air->faults.Enter(Call::kConnectionStatusSubscribe);
  const std::lock_guard lock(mutex_);
  return statusChanged_.Subscribe(std::move(handler));
}

std::shared_ptr<platform::EndpointPairView> SimulatedLink::GetConnectionEndpointPairs() {
  air->faults.Enter(Call::kGetConnectionEndpointPairs);
  const Peer peer = air->StateOf(index_).peer;
  const auto ageMs =
      static_cast<std::uint32_t>(air->system->Clock()) - static_cast<std::uint32_t>(openedAt_);
  return std::make_shared<SimulatedEndpointPairView>(
      air, ageMs < peer.endpointPairsMs ? std::vector<AddressPair>() : EndpointPairsOf(peer));
}

void SimulatedLink::Close() {
  air->faults.Enter(Call::kDeviceClose);
  EndLink(air->CurrentHabits().onClose, air->StateOf(index_).peer.closeMs);
}

bool SimulatedLink::IsUp() {
  const std::lock_guard lock(mutex_);
  return up_;
}

void SimulatedLink::EndLink(LinkEnd how, std::uint32_t delayMs) {
  const auto later = [this](std::uint32_t afterMs, auto step) {
    air->delayedActions.After(afterMs, [self = weak_from_this(), step] {
      if (const auto device = self.lock()) {
        step(*device);
      }
    });
  };
  if (!IsUp() || how == LinkEnd::kStaysUp || delayMs == kNever) {
    return;
  }
  if (how != LinkEnd::kStaysUpReported) {
    later(delayMs, [](SimulatedLink& device) {
      const std::lock_guard lock(device.mutex_);
      device.up_ = false;
    });
  }
  const std::uint32_t reportMs = air->CurrentHabits().statusReportMs;
  const int reports = how == LinkEnd::kSilent ? 0 : how == LinkEnd::kRepeated ? 2 : 1;
  for (int i = 0; i < reports && reportMs != kNever; ++i) {
    later(delayMs + reportMs, [](SimulatedLink& device) { device.RaiseStatus(); });
  }
}

void SimulatedLink::RaiseStatus() {
  const std::lock_guard lock(mutex_);
  air->Raise(
      queue_, statusChanged_.Subscribers(),
      [self = shared_from_this()](
          const platform::PlainHandler<platform::WiFiDirectDevice>& handler) { handler(*self); });
}

std::shared_ptr<platform::WiFiDirectDevice> Open(const std::shared_ptr<AirState>& air,
                                                 const std::u16string& id) {
  if (!air->faults.Enter(Call::kFromIdAsync)) {
    return nullptr;
  }
  const std::size_t index = air->Find(id);
  if (index == air->PeerCount()) {
    air->system->Sleep(kNobodyAnswersMs);
    return nullptr;
  }
  const Peer peer = air->StateOf(index).peer;
  const unsigned begun = air->Update(index, [](PeerState& state) { return ++state.openRequests; });
  if (!air->CompleteAs(NextOutcome(peer.openings, begun), peer.openMs)) {
    return nullptr;
  }
  // The device has had time to go, or to be unpaired.
  const PeerState now = air->StateOf(index);
  if (!now.peer.present || !now.peer.paired) {
    return nullptr;
  }
  if (now.linksOfPairing >= now.peer.linksPerPairing) {
    throw platform::Error(now.peer.openError, MessageOf(now.peer.openError));
  }
  auto device = std::make_shared<SimulatedLink>(air, index);
  air->Update(index, [](PeerState& state) {
    ++state.linksOpened;
    ++state.linksOfPairing;
  });
  air->Register(device);
  return device;
}

}  // namespace lanvoss::simulated
