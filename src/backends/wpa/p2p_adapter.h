// One Wi-Fi Direct adapter: what its watchers, pairings and links share.
#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/events/delayed_actions.h"
#include "backends/events/event_dispatcher.h"
#include "backends/events/threads.h"
#include "backends/wpa/finder.h"
#include "backends/wpa/link.h"
#include "backends/wpa/supplicant.h"
#include "platform/system.h"
#include "platform/wifi_direct.h"

namespace lanvoss::wpa {

class WpaDevice;
class WpaWatcher;

class P2pAdapter : public std::enable_shared_from_this<P2pAdapter> {
 public:
  // Raises platform::Error when wpa_supplicant does not answer at that control socket.
  static std::shared_ptr<P2pAdapter> Create(const std::shared_ptr<platform::System>& system,
                                            const std::string& socketPath);

  P2pAdapter(const std::shared_ptr<platform::System>& system,
             const std::shared_ptr<events::Threads>& threads);
  ~P2pAdapter() = default;
  P2pAdapter(const P2pAdapter&) = delete;
  P2pAdapter& operator=(const P2pAdapter&) = delete;

  // Takes down the groups that this object has brought up, because nothing else does. The last
  // call. Blocks for kShortestGroupMs and, for the command and the search before and after it,
  // three times kReplyMs at most.
  void End();

  void Register(const std::shared_ptr<WpaWatcher>& watcher);
  // Reports the devices that are in a group to the watchers: they answer no search. Returns at
  // once.
  void ReportLinks();

  // ---- Pairing with the device of this address
  bool IsPaired(const std::string& address) const;
  // Blocks; docs/limits.md has the longest time. The group that comes of it stays up for the open
  // request that follows.
  platform::DevicePairingResultStatus Pair(const std::string& address, int ownerIntent);
  // Returns at once.
  void Unpair(const std::string& address);

  // ---- Links
  // None: the device is not paired, or does not come. Blocks; docs/limits.md has the
  // longest time.
  std::shared_ptr<WpaDevice> Open(const std::string& address);
  // Takes a link down. Returns at once. Its device object is notified.
  void Close(const std::string& interface);

  Finder& TheFinder() { return *finder_; }

  // Sends an event to each handler, in the queue's order. What leaves a handler as an exception
  // ends there.
  template <typename Handler, typename Invoke>
  void Raise(const std::shared_ptr<events::EventQueue>& queue, std::vector<Handler> handlers,
             Invoke invoke) {
    for (Handler& handler : handlers) {
      dispatcher.Send(queue, [self = shared_from_this(), handler = std::move(handler), invoke] {
        try {
          invoke(handler);
        } catch (...) {
        }
      });
    }
  }

  events::EventDispatcher dispatcher;
  events::DelayedActions delayedActions;

 private:
  class Turn;

  // On a thread of the dispatcher's, one after the other, and never for long: an event that is late
  // would be taken for one of the next link.
  void OnMessage(const Message& message);
  void OnFound(const std::string& address);
  void OnLost(const std::string& address);
  void OnDeviceLeft(const std::string& address);
  void OnGroupGone(const std::string& interface);
  void OnGone();

  void Later(const std::shared_ptr<events::EventQueue>& queue,
             std::function<void(P2pAdapter&)> step);
  void ForgetDevice(const std::string& address);
  void TakeDown(const std::string& interface);
  void AwaitShortestGroup(const std::string& interface);

  bool Keep(Inbox& inbox, const Link& link);
  void ReleaseUnclaimed(const std::string& interface, Clock::time_point mayGo);
  std::shared_ptr<WpaDevice> TakeKept(const std::string& address);

  std::vector<std::shared_ptr<WpaWatcher>> Watchers();
  std::vector<std::shared_ptr<WpaDevice>> Devices();

  const std::shared_ptr<events::EventQueue> messages_;
  const std::shared_ptr<events::EventQueue> chores_;

  std::mutex mutex_;  // guards everything below
  // The groups that this object has brought up, by interface, and when they may go.
  std::map<std::string, Clock::time_point> groups_;
  // Links without a device object so far, by the device's address.
  std::map<std::string, Link> kept_;
  std::vector<std::weak_ptr<WpaWatcher>> watchers_;
  std::vector<std::weak_ptr<WpaDevice>> devices_;
  bool negotiates_ = false;  // a negotiation runs
  std::condition_variable turnEnded_;

  // Made by Create and then always there. Last, so that no event comes when the rest has gone.
  std::optional<Supplicant> supplicant_;
  std::optional<Finder> finder_;
};

}  // namespace lanvoss::wpa
