#include "backends/wpa/p2p_adapter.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

#include "backends/wpa/credentials.h"
#include "backends/wpa/fail.h"
#include "backends/wpa/groups.h"
#include "backends/wpa/limits.h"
#include "backends/wpa/negotiation.h"
#include "backends/wpa/no_signals.h"
#include "backends/wpa/wpa_device.h"
#include "backends/wpa/wpa_watcher.h"

namespace lanvoss::wpa {
namespace {

using Status = platform::DevicePairingResultStatus;

template <typename Object>
std::vector<std::shared_ptr<Object>> Living(std::vector<std::weak_ptr<Object>>& objects) {
  std::erase_if(objects, [](const auto& object) { return object.expired(); });
  std::vector<std::shared_ptr<Object>> living;
  for (const auto& object : objects) {
    if (auto held = object.lock()) {
      living.push_back(std::move(held));
    }
  }
  return living;
}

// The settings that this machine needs, independent of the configuration of wpa_supplicant.
void Configure(const Supplicant& supplicant) {
  for (const std::string& setting :
       {std::string("config_methods virtual_push_button"), std::string("persistent_reconnect 1"),
        std::string("p2p_go_max_inactivity ") + kClientInactivityS,
        std::string("ip_addr_go ") + kOwnerAddress, std::string("ip_addr_mask ") + kNetworkMask,
        std::string("ip_addr_start ") + kFirstAddress,
        std::string("ip_addr_end ") + kLastAddress}) {
    supplicant.Do("SET " + setting);
  }
}

std::shared_ptr<P2pAdapter> NewAdapter(const std::shared_ptr<platform::System>& system) {
  try {
    return std::make_shared<P2pAdapter>(system, std::make_shared<ThreadsWithoutSignals>());
  } catch (const std::system_error& error) {
    Fail("no thread", error.code().value());
  }
}

}  // namespace

// One negotiation at a time, and nothing is looked for meanwhile.
class P2pAdapter::Turn {
 public:
  explicit Turn(P2pAdapter& adapter) : adapter_(Take(adapter)), pause_(*adapter.finder_) {}
  ~Turn() {
    {
      const std::lock_guard lock(adapter_.mutex_);
      adapter_.negotiates_ = false;
    }
    adapter_.turnEnded_.notify_one();
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  static P2pAdapter& Take(P2pAdapter& adapter) {
    std::unique_lock lock(adapter.mutex_);
    if (!adapter.turnEnded_.wait_until(lock, After(kTurnMs),
                                       [&] { return !adapter.negotiates_; })) {
      Fail("the adapter is busy with another device");
    }
    adapter.negotiates_ = true;
    return adapter;
  }

  P2pAdapter& adapter_;
  const Finder::Pause pause_;
};

std::shared_ptr<P2pAdapter> P2pAdapter::Create(const std::shared_ptr<platform::System>& system,
                                               const std::string& socketPath) {
  auto adapter = NewAdapter(system);
  adapter->supplicant_.emplace(socketPath, [raw = adapter.get()](const Message& message) {
    raw->Later(raw->messages_, [message](P2pAdapter& self) { self.OnMessage(message); });
  });
  adapter->finder_.emplace(*adapter->supplicant_);
  Configure(*adapter->supplicant_);
  return adapter;
}

P2pAdapter::P2pAdapter(const std::shared_ptr<platform::System>& system,
                       const std::shared_ptr<events::Threads>& threads)
    : dispatcher(system, threads),
      delayedActions(system, *threads),
      messages_(dispatcher.NewQueue()),
      chores_(dispatcher.NewQueue()) {}

void P2pAdapter::End() {
  std::map<std::string, Clock::time_point> groups;
  {
    const std::lock_guard lock(mutex_);
    groups = groups_;
  }
  for (const auto& [interface, mayGo] : groups) {
    try {
      TakeDown(interface);
    } catch (const platform::Error&) {
      return;  // there is no wpa_supplicant any more, and no group
    }
  }
}

void P2pAdapter::Register(const std::shared_ptr<WpaWatcher>& watcher) {
  const std::lock_guard lock(mutex_);
  watchers_.push_back(watcher);
}

// ---- Pairing

bool P2pAdapter::IsPaired(const std::string& address) const {
  return StoredGroupWith(*supplicant_, address).has_value();
}

Status P2pAdapter::Pair(const std::string& address, int ownerIntent) {
  const Turn turn(*this);
  if (IsPaired(address)) {
    return Status::AlreadyPaired;
  }
  Inbox inbox(*supplicant_);
  const auto [status, link] = Negotiate(*supplicant_, inbox, address, ownerIntent);
  return !link || Keep(inbox, *link) ? status : Status::Failed;
}

void P2pAdapter::Unpair(const std::string& address) {
  Later(chores_, [address](P2pAdapter& self) { self.ForgetDevice(address); });
}

// Takes down the groups that it is in too. They are looked for first, because a stored group says
// who is in it, and taken down last: the end of a link means that the device is no longer paired.
void P2pAdapter::ForgetDevice(const std::string& address) {
  const Turn turn(*this);
  std::vector<std::string> interfaces;
  for (const Group& group : GroupsOf(*supplicant_)) {
    const std::vector<std::string> devices = DevicesIn(*supplicant_, group);
    if (std::find(devices.begin(), devices.end(), address) != devices.end()) {
      interfaces.push_back(group.interface);
    }
  }
  ForgetAll(*supplicant_, address);
  for (const std::string& interface : interfaces) {
    TakeDown(interface);
  }
}

// ---- Links

std::shared_ptr<WpaDevice> P2pAdapter::Open(const std::string& address) {
  const Turn turn(*this);
  if (auto device = TakeKept(address)) {
    return device;
  }
  Inbox inbox(*supplicant_);
  const auto link = Invite(*supplicant_, inbox, address);
  return link && Keep(inbox, *link) ? TakeKept(address) : nullptr;
}

// Keeps a new link until a device object takes it. Its events before that are in the inbox; the
// adapter itself receives the later ones. False: the link is already gone.
bool P2pAdapter::Keep(Inbox& inbox, const Link& link) {
  const auto mayGo = After(kShortestGroupMs);
  Link before;  // as every link, it goes after the lock: the end of its DHCP server is waited for
  {
    const std::lock_guard lock(mutex_);
    before = std::exchange(kept_[link.peer], link);
    groups_[link.interface] = mayGo;
  }
  const auto release = [interface = link.interface, mayGo](P2pAdapter& adapter) {
    adapter.ReleaseUnclaimed(interface, mayGo);
  };
  delayedActions.After(kUnclaimedMs, [weak = weak_from_this(), release] {
    if (const auto self = weak.lock()) {
      self->Later(self->chores_, release);
    }
  });
  while (const auto message = inbox.Next(Clock::now())) {
    if (IsEndOf(link, *message)) {
      OnDeviceLeft(link.peer);
      return false;
    }
  }
  return true;
}

// Takes a link down that no open request has taken. `mayGo` tells its group from a later one on the
// same interface.
void P2pAdapter::ReleaseUnclaimed(const std::string& interface, Clock::time_point mayGo) {
  bool isUnclaimed = false;
  {
    const std::lock_guard lock(mutex_);
    const auto group = groups_.find(interface);
    isUnclaimed = group != groups_.end() && group->second == mayGo &&
                  std::ranges::any_of(
                      kept_, [&](const auto& kept) { return kept.second.interface == interface; });
  }
  if (isUnclaimed) {
    TakeDown(interface);
  }
}

std::shared_ptr<WpaDevice> P2pAdapter::TakeKept(const std::string& address) {
  const std::lock_guard lock(mutex_);
  const auto found = kept_.find(address);
  if (found == kept_.end()) {
    return nullptr;
  }
  auto device = std::make_shared<WpaDevice>(shared_from_this(), std::move(found->second));
  kept_.erase(found);
  devices_.push_back(device);
  return device;
}

void P2pAdapter::Close(const std::string& interface) {
  Later(chores_, [interface](P2pAdapter& self) { self.TakeDown(interface); });
}

// A search now would stop the device from receiving the disconnect. Then it would search the group
// for 11 s.
void P2pAdapter::TakeDown(const std::string& interface) {
  const Finder::Pause pause(*finder_);
  AwaitShortestGroup(interface);
  RemoveGroup(*supplicant_, interface);
  OnGroupGone(interface);
}

void P2pAdapter::AwaitShortestGroup(const std::string& interface) {
  Clock::time_point mayGo;
  {
    const std::lock_guard lock(mutex_);
    if (const auto found = groups_.find(interface); found != groups_.end()) {
      mayGo = found->second;
    }
  }
  std::this_thread::sleep_until(mayGo);
}

// ---- Events

void P2pAdapter::OnMessage(const Message& message) {
  const std::string address = message.Field(kAddressField);
  if (message.name == kFoundEvent) {
    OnFound(address);
  } else if (message.name == "P2P-DEVICE-LOST") {
    for (const auto& watcher : Watchers()) {
      watcher->Lost(address);
    }
  } else if (message.name == "AP-STA-DISCONNECTED") {
    OnDeviceLeft(address);
  } else if (IsGroupStart(message)) {
    SecureGroup(InterfaceOf(message));
  } else if (message.name == "P2P-GROUP-REMOVED") {
    OnGroupGone(message.Word(0));
  } else if (message.name == kGoneEvent) {
    OnGone();
  } else if (message.name == kBackEvent) {
    Configure(*supplicant_);
  }
}

void P2pAdapter::OnFound(const std::string& address) {
  // The name may hold anything, so the event is no help; here it has its own line.
  const std::string reply = supplicant_->Ask("P2P_PEER " + address);
  if (!reply.starts_with(address)) {
    return;  // lost meanwhile
  }
  const std::string name = LineOf(reply, "device_name");
  for (const auto& watcher : Watchers()) {
    watcher->Found(address, name);
  }
}

// A group that a killed process has left counts too: who is in it is found nowhere else.
void P2pAdapter::ReportLinks() {
  Later(messages_, [](P2pAdapter& self) {
    for (const Group& group : GroupsOf(*self.supplicant_)) {
      for (const std::string& address : DevicesIn(*self.supplicant_, group)) {
        self.OnFound(address);
      }
    }
  });
}

// The device has left its groups.
void P2pAdapter::OnDeviceLeft(const std::string& address) {
  std::vector<std::string> interfaces;
  decltype(kept_)::node_type kept;
  {
    const std::lock_guard lock(mutex_);
    kept = kept_.extract(address);
  }
  if (kept) {
    interfaces.push_back(kept.mapped().interface);
  }
  for (const auto& device : Devices()) {
    if (device->TheLink().peer == address && device->End()) {
      interfaces.push_back(device->TheLink().interface);
    }
  }
  // A group that this machine owns would stay up, empty.
  for (const std::string& interface : interfaces) {
    Close(interface);
  }
}

void P2pAdapter::OnGroupGone(const std::string& interface) {
  bool wasOwn = false;
  std::vector<Link> gone;
  {
    const std::lock_guard lock(mutex_);
    wasOwn = groups_.erase(interface) == 1;
    std::erase_if(kept_, [&](auto& kept) {
      const bool isIn = kept.second.interface == interface;
      if (isIn) {
        gone.push_back(std::move(kept.second));
      }
      return isIn;
    });
  }
  if (wasOwn) {
    ClearAddressAfter(interface);
  }
  // Last: whoever is notified may begin the next link, on the same interface.
  for (const auto& device : Devices()) {
    if (device->TheLink().interface == interface) {
      device->End();
    }
  }
}

// wpa_supplicant has taken all groups with it.
void P2pAdapter::OnGone() {
  std::map<std::string, Clock::time_point> groups;
  std::map<std::string, Link> kept;
  {
    const std::lock_guard lock(mutex_);
    groups.swap(groups_);
    kept.swap(kept_);
  }
  for (const auto& [interface, mayGo] : groups) {
    ClearAddressAfter(interface);
  }
  for (const auto& device : Devices()) {
    device->End();
  }
  for (const auto& watcher : Watchers()) {
    watcher->Abort();
  }
}

// Runs a step on a thread of the dispatcher, after the steps that were sent to that queue before.
// An error cannot be reported: what should be taken down is gone, or is reported later.
void P2pAdapter::Later(const std::shared_ptr<events::EventQueue>& queue,
                       std::function<void(P2pAdapter&)> step) {
  dispatcher.Send(queue, [weak = weak_from_this(), step = std::move(step)] {
    if (const auto self = weak.lock()) {
      try {
        step(*self);
      } catch (const platform::Error&) {
      }
    }
  });
}

std::vector<std::shared_ptr<WpaWatcher>> P2pAdapter::Watchers() {
  const std::lock_guard lock(mutex_);
  return Living(watchers_);
}

std::vector<std::shared_ptr<WpaDevice>> P2pAdapter::Devices() {
  const std::lock_guard lock(mutex_);
  return Living(devices_);
}

}  // namespace lanvoss::wpa
