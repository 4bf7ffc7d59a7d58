#include "backends/simulated/air.h"

#include <algorithm>
#include <utility>

#include "backends/simulated/air_state.h"
#include "backends/simulated/echo.h"
#include "backends/simulated/simulated_information.h"
#include "backends/simulated/simulated_link.h"
#include "backends/simulated/simulated_watcher.h"

namespace lanvoss::simulated {
namespace {

constexpr char16_t kAssociationEndpoints[] = u"simulated:association-endpoints";
// Written here again, so that a wrong property of the library is noticed.
constexpr char16_t kKnownProperty[] = u"System.Devices.WiFiDirect.InformationElements";

class SimulatedRadio final : public platform::WiFiDirect {
 public:
  explicit SimulatedRadio(std::shared_ptr<AirState> air) : air_(std::move(air)) {}

  std::u16string GetDeviceSelector(platform::WiFiDirectDeviceSelectorType type) override {
    air_->faults.Enter(Call::kGetDeviceSelector);
    return type == platform::WiFiDirectDeviceSelectorType::AssociationEndpoint
               ? kAssociationEndpoints
               : u"simulated:device-interfaces";
  }

  std::shared_ptr<platform::DeviceWatcher> CreateWatcher(
      const std::u16string& selector,
      const std::vector<std::u16string>& additionalProperties) override {
    if (selector != kAssociationEndpoints ||
        additionalProperties != std::vector<std::u16string>{kKnownProperty}) {
      throw platform::Error(platform::kErrorInvalidArgument, u"The parameter is incorrect.");
    }
    if (!air_->faults.Enter(Call::kCreateWatcher)) {
      return nullptr;
    }
    auto watcher = std::make_shared<SimulatedWatcher>(air_);
    air_->Register(watcher);
    return watcher;
  }

  std::shared_ptr<platform::WiFiDirectConnectionParameters> CreateConnectionParameters() override {
    air_->faults.Enter(Call::kCreateConnectionParameters);
    return std::make_shared<SimulatedParameters>(air_);
  }

  std::shared_ptr<platform::WiFiDirectDevice> FromIdAsync(const std::u16string& deviceId) override {
    return Open(air_, deviceId);
  }

 private:
  const std::shared_ptr<AirState> air_;
};

}  // namespace

void PeerHandle::Do(Act act, std::u16string newName) const {
  air_->Do(index_, act, std::move(newName));
}
bool PeerHandle::IsPaired() const { return air_->StateOf(index_).peer.paired; }
unsigned PeerHandle::Pairings() const { return air_->StateOf(index_).pairings; }
unsigned PeerHandle::OpenRequests() const { return air_->StateOf(index_).openRequests; }
unsigned PeerHandle::LinksOpened() const { return air_->StateOf(index_).linksOpened; }
PairingRequest PeerHandle::LatestPairing() const { return air_->StateOf(index_).latestPairing; }
std::string PeerHandle::Id() const { return platform::Utf16ToUtf8(air_->StateOf(index_).peer.id); }
unsigned PeerHandle::LinksUp() const {
  const auto devices = air_->LinksOf(index_);
  return static_cast<unsigned>(std::count_if(devices.begin(), devices.end(),
                                             [](const auto& device) { return device->IsUp(); }));
}

Air::Air(std::shared_ptr<platform::System> system, std::shared_ptr<events::Threads> threads,
         Habits habits, std::uint64_t seed)
    : air_(std::make_shared<AirState>(std::move(system), std::move(threads), habits, seed)) {}

Air::~Air() = default;

std::shared_ptr<platform::WiFiDirect> Air::Radio() const {
  return std::make_shared<SimulatedRadio>(air_);
}

std::shared_ptr<platform::System> Air::System() const { return WithEcho(air_->system, air_); }

PeerHandle Air::Add(Peer peer) { return {*air_, air_->Add(std::move(peer))}; }

void Air::After(std::uint32_t delayMs, std::function<void()> action) {
  air_->delayedActions.After(delayMs, std::move(action));
}

void Air::SetHabits(const Habits& habits) { air_->SetHabits(habits); }
Faults& Air::faults() { return air_->faults; }
void Air::AbortWatchers() { air_->AbortWatchers(); }
void Air::AbortWatchersAfter(std::uint32_t delayMs) { air_->AbortWatchersAfter(delayMs); }
void Air::ReleaseHangs() { air_->ReleaseHangs(); }
unsigned Air::LiveObjects() const { return air_->liveObjects; }
unsigned Air::EscapedExceptions() const { return air_->escapedExceptions; }

}  // namespace lanvoss::simulated
