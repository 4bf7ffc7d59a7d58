#include "backends/simulated/air_state.h"

#include <algorithm>

#include "backends/simulated/simulated_link.h"
#include "backends/simulated/simulated_watcher.h"

namespace lanvoss::simulated {
namespace {

// What is still held of the objects registered so far.
template <typename Object>
std::vector<std::shared_ptr<Object>> Alive(const std::vector<std::weak_ptr<Object>>& objects) {
  std::vector<std::shared_ptr<Object>> alive;
  for (const auto& object : objects) {
    if (auto held = object.lock()) {
      alive.push_back(std::move(held));
    }
  }
  return alive;
}

template <typename Object>
void ForgetTheDead(std::vector<std::weak_ptr<Object>>& objects) {
  std::erase_if(objects, [](const std::weak_ptr<Object>& object) { return object.expired(); });
}

}  // namespace

AirState::AirState(std::shared_ptr<platform::System> owner,
                   std::shared_ptr<events::Threads> threads, Habits habits, std::uint64_t seed)
    : system(std::move(owner)),
      faults(seed),
      hangsReleased_(system->CreateManualResetEvent(false)),
      random_(seed),
      habits_(habits),
      dispatcher(system, threads),
      delayedActions(system, *threads) {}

std::size_t AirState::Add(Peer peer) {
  std::vector<ScriptStep> script;
  std::size_t index = 0;
  {
    const std::lock_guard lock(mutex_);
    index = peers_.size();
    if (peer.id.empty()) {
      char id[] = "WiFiDirect#02:00:00:00:00:00";
      std::snprintf(id, sizeof id, "WiFiDirect#02:00:00:00:%02zX:%02zX", index / 256 % 256,
                    index % 256);
      peer.id = platform::Utf8ToUtf16(id);
    }
    script = peer.script;
    peers_.push_back({.peer = std::move(peer)});
  }
  for (const ScriptStep& step : script) {
    delayedActions.After(step.atMs, [self = weak_from_this(), index, step] {
      if (const auto air = self.lock()) {
        air->Do(index, step.act, step.newName);
      }
    });
  }
  if (StateOf(index).peer.present) {
    Announce(index, &SimulatedWatcher::PeerAppeared);
  }
  return index;
}

void AirState::Do(std::size_t index, Act act, std::u16string newName) {
  switch (act) {
    case Act::kAppear:
      if (!Update(index,
                  [](PeerState& state) { return std::exchange(state.peer.present, true); })) {
        Announce(index, &SimulatedWatcher::PeerAppeared);
      }
      break;
    case Act::kDisappear:
      if (Update(index,
                 [](PeerState& state) { return std::exchange(state.peer.present, false); })) {
        Announce(index, &SimulatedWatcher::PeerDisappeared);
      }
      break;
    case Act::kRename:
      Update(index, [&](PeerState& state) { state.peer.name = std::move(newName); });
      Announce(index, &SimulatedWatcher::PeerRenamed);
      break;
    case Act::kGoSilent:
      Update(index, [](PeerState& state) { state.silent = true; });
      break;
    case Act::kAnswer:
      Update(index, [](PeerState& state) { state.silent = false; });
      break;
    case Act::kDropLink:
      EndLinks(index, CurrentHabits().onDrop);
      break;
  }
}

void AirState::EndLinks(std::size_t index, LinkEnd how) {
  for (const auto& device : LinksOf(index)) {
    device->EndLink(how, 0);
  }
}

void AirState::AbortWatchers() {
  for (const auto& watcher : Watchers()) {
    watcher->Abort();
  }
}

void AirState::AbortWatchersAfter(std::uint32_t delayMs) {
  delayedActions.After(delayMs, [self = weak_from_this()] {
    if (const auto air = self.lock()) {
      air->AbortWatchers();
    }
  });
}

Habits AirState::CurrentHabits() const {
  const std::lock_guard lock(mutex_);
  return habits_;
}

void AirState::SetHabits(const Habits& habits) {
  const std::lock_guard lock(mutex_);
  habits_ = habits;
}

PeerState AirState::StateOf(std::size_t index) const {
  const std::lock_guard lock(mutex_);
  return peers_[index];
}

std::size_t AirState::PeerCount() const {
  const std::lock_guard lock(mutex_);
  return peers_.size();
}

bool AirState::IsReported(std::size_t index) const {
  const std::lock_guard lock(mutex_);
  const Peer& peer = peers_[index].peer;
  return peer.present || (peer.paired && habits_.absentReported);
}

Peer AirState::NextReport(std::size_t index) {
  const std::lock_guard lock(mutex_);
  PeerState& state = peers_[index];
  const unsigned reportsBefore = state.reports++;
  Peer reported = state.peer;
  if (reportsBefore < reported.namelessReports) {
    reported.name.clear();
  }
  if (habits_.idsVary && reportsBefore % 2 == 1) {
    reported.id = InCapitals(reported.id);
  }
  return reported;
}

std::size_t AirState::Find(const std::u16string& id) const {
  const std::lock_guard lock(mutex_);
  const auto found =
      std::find_if(peers_.begin(), peers_.end(), [same = InCapitals(id)](const PeerState& state) {
        return InCapitals(state.peer.id) == same;
      });
  return static_cast<std::size_t>(found - peers_.begin());
}

void AirState::Register(const std::shared_ptr<SimulatedWatcher>& watcher) {
  const std::lock_guard lock(mutex_);
  ForgetTheDead(watchers_);
  watchers_.push_back(watcher);
}

void AirState::Register(const std::shared_ptr<SimulatedLink>& device) {
  const std::lock_guard lock(mutex_);
  ForgetTheDead(devices_);
  devices_.push_back(device);
}

std::vector<std::shared_ptr<SimulatedWatcher>> AirState::Watchers() const {
  const std::lock_guard lock(mutex_);
  return Alive(watchers_);
}

std::vector<std::shared_ptr<SimulatedLink>> AirState::LinksOf(std::size_t index) const {
  std::vector<std::shared_ptr<SimulatedLink>> devices;
  {
    const std::lock_guard lock(mutex_);
    devices = Alive(devices_);
  }
  std::erase_if(devices, [index](const auto& device) { return device->Index() != index; });
  return devices;
}

void AirState::Announce(std::size_t index, void (SimulatedWatcher::*report)(std::size_t)) {
  for (const auto& watcher : Watchers()) {
    (*watcher.*report)(index);
  }
}

std::pair<std::vector<Echo>, std::uint32_t> AirState::EchoesFrom(
    const platform::Ipv4Address& address) {
  const auto isRemote = [&](const AddressPair& pair) {
    return pair.remote && system->ResolveHost(platform::Utf16ToUtf8(*pair.remote)) == address;
  };
  for (std::size_t index = 0; index < PeerCount(); ++index) {
    const auto pairs = EndpointPairsOf(StateOf(index).peer);
    const auto devices = LinksOf(index);
    const bool isUp = std::ranges::any_of(devices, [](const auto& each) { return each->IsUp(); });
    if (!isUp || std::ranges::none_of(pairs, isRemote)) {
      continue;
    }
    const std::lock_guard lock(mutex_);
    PeerState& state = peers_[index];
    const unsigned request = state.echoRequests++;
    std::vector<Echo> echoes;
    if (state.silent) {
      echoes = {};
    } else if (request < state.peer.echoes.size()) {
      echoes = state.peer.echoes[request];
    } else if (std::generate_canonical<double, 32>(random_) < state.peer.echoShare) {
      echoes = {Echo::kReply};
    }
    return {echoes, state.peer.echoMs};
  }
  return {};
}

bool AirState::CompleteAs(Outcome outcome, std::uint32_t durationMs) {
  if (outcome == Outcome::kHangs || durationMs == kNever) {
    hangsReleased_->Wait(platform::kWaitForever);
    throw platform::CancelledError();
  }
  system->Sleep(durationMs);
  if (outcome == Outcome::kFails) {
    throw platform::Error(platform::kErrorFail, u"Unspecified error");
  }
  if (outcome == Outcome::kCancelled) {
    throw platform::CancelledError();
  }
  return outcome == Outcome::kSucceeds;
}

}  // namespace lanvoss::simulated
