// The state that all objects of one air share: its devices, its platform's habits and its threads.
// It exists as long as any of these objects is held.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "backends/events/delayed_actions.h"
#include "backends/events/event_dispatcher.h"
#include "backends/events/threads.h"
#include "backends/simulated/air.h"
#include "backends/simulated/faults.h"
#include "backends/simulated/peer.h"
#include "platform/platform.h"

namespace lanvoss::simulated {

class SimulatedWatcher;
class SimulatedLink;

// A device as it is now.
struct PeerState {
  Peer peer;  // with its current name, presence and pairing
  bool silent = false;
  bool pairing = false;  // a ceremony is under way
  unsigned reports = 0;
  unsigned pairings = 0;
  unsigned openRequests = 0;
  unsigned linksOpened = 0;
  unsigned linksOfPairing = 0;  // opened since it was paired
  unsigned echoRequests = 0;
  PairingRequest latestPairing = {};
};

class AirState : public std::enable_shared_from_this<AirState> {
 public:
  AirState(std::shared_ptr<platform::System> owner, std::shared_ptr<events::Threads> threads,
           Habits habits, std::uint64_t seed);

  // ---- What happens to the devices
  std::size_t Add(Peer peer);
  void Do(std::size_t index, Act act, std::u16string newName);
  void AbortWatchers();
  void AbortWatchersAfter(std::uint32_t delayMs);

  // ---- What the platform's objects need
  // Copies, taken under the lock.
  Habits CurrentHabits() const;
  PeerState StateOf(std::size_t index) const;
  std::size_t PeerCount() const;
  // Whether a pass reports the device now.
  bool IsReported(std::size_t index) const;
  // The device as its next report has it.
  Peer NextReport(std::size_t index);
  // The index of the device with this id, or PeerCount().
  std::size_t Find(const std::u16string& id) const;

  // Changes a device's state under the lock; `change` must not call out.
  template <typename Change>
  auto Update(std::size_t index, Change change) {
    const std::lock_guard lock(mutex_);
    return change(peers_[index]);
  }

  void SetHabits(const Habits& habits);
  void Register(const std::shared_ptr<SimulatedWatcher>& watcher);
  void Register(const std::shared_ptr<SimulatedLink>& device);
  std::vector<std::shared_ptr<SimulatedLink>> LinksOf(std::size_t index) const;
  void EndLinks(std::size_t index, LinkEnd how);

  // Sends `handler(sender, args...)` to each subscriber, on a thread of the dispatcher's. The
  // sender and what the handlers hold are released on that thread.
  template <typename Handlers, typename Invoke>
  void Raise(const std::shared_ptr<events::EventQueue>& queue, Handlers handlers, Invoke invoke) {
    const auto own = CurrentHabits().handlersOverlap ? nullptr : queue;
    for (auto& handler : handlers) {
      dispatcher.Send(own, [air = shared_from_this(), handler = std::move(handler), invoke] {
        try {
          invoke(handler);
        } catch (...) {
          ++air->escapedExceptions;
        }
      });
    }
  }

  // What comes back, and after how many milliseconds, for an echo request to that address.
  std::pair<std::vector<Echo>, std::uint32_t> EchoesFrom(const platform::Ipv4Address& address);

  // Blocks as an operation does that ends with `outcome`. True: it succeeds; false: it returns
  // none. The other outcomes raise.
  bool CompleteAs(Outcome outcome, std::uint32_t durationMs);

  void ReleaseHangs() { hangsReleased_->Set(); }

  const std::shared_ptr<platform::System> system;
  Faults faults;
  std::atomic<unsigned> escapedExceptions = 0;  // exceptions that left a handler
  std::atomic<unsigned> liveObjects = 0;        // platform objects that are held

 private:
  void Announce(std::size_t index, void (SimulatedWatcher::*report)(std::size_t));
  std::vector<std::shared_ptr<SimulatedWatcher>> Watchers() const;

  const std::unique_ptr<platform::Event> hangsReleased_;

  mutable std::mutex mutex_;  // guards everything down to the threads
  std::mt19937_64 random_;    // which echoes are answered
  Habits habits_;
  std::vector<PeerState> peers_;
  std::vector<std::weak_ptr<SimulatedWatcher>> watchers_;
  std::vector<std::weak_ptr<SimulatedLink>> devices_;

 public:
  // Last, so that their threads end before the rest goes.
  events::EventDispatcher dispatcher;
  events::DelayedActions delayedActions;
};

// The outcome of request number `begun`, counted from 1; success after the end of the list.
inline Outcome NextOutcome(const std::vector<Outcome>& outcomes, unsigned begun) {
  return begun <= outcomes.size() ? outcomes[begun - 1] : Outcome::kSucceeds;
}

// Counts a platform object while it lives.
class Counted {
 public:
  explicit Counted(std::shared_ptr<AirState> owner) : air(std::move(owner)) { ++air->liveObjects; }
  ~Counted() { --air->liveObjects; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 protected:
  const std::shared_ptr<AirState> air;
};

}  // namespace lanvoss::simulated
