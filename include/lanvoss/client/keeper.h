/// @file
/// Keeps the link to a device alive.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "lanvoss/client/handler.h"
#include "lanvoss/client/raw_socket.h"
#include "lanvoss/client/requests.h"

namespace lanvoss {

/// How a link is kept.
struct KeepOptions {
  /// How the link is requested each time.
  ConnectOptions connect;
  /// The time from one check of the link to the next.
  std::chrono::milliseconds checkEvery{std::chrono::seconds(10)};
  /// Whether the library can probe: without the right to raw sockets each check would unpair a
  /// healthy link. It is asked before each check. Null: it always can. An exception means no.
  std::function<bool()> canProbe = &CanOpenRawSocket;
};

/// A change of a link that is kept.
struct LinkChange {
  /// What has become of the link.
  enum class State {
    kUp,         ///< `outcome` has the link, `outage` the time without it; 0 for the first link
    kDown,       ///< `outcome` has the reason; another reason is another change
    kSilent,     ///< the platform calls the link up, but nobody answers; the device is paired again
    kUnchecked,  ///< the link is up, but `outcome.words` is why it cannot be checked; said once
  };
  State state = State::kDown;           ///< the new one
  Outcome outcome;                      ///< has the link, or the reason
  std::chrono::milliseconds outage{0};  ///< the time without the link, of kUp
};

/// Made by `Client::Keep`. It requests the link, checks it from time to time, and requests it again
/// when it is down, less and less often while the device is away:
///  - a change is reported when the library reports it, not when the next request has failed;
///  - a link that cannot be checked is not checked: the process may open no raw socket, or the
///    remote address is not IPv4;
///  - a device that is silent again directly after its recovery is disconnected first;
///  - after platform errors in a row the device is unpaired, once for each outage: often one side
///    has forgotten the pairing.
class Keeper final : private detail::Follower {
 public:
  /// The host's handler of changes.
  using OnChange = std::function<void(const LinkChange& change)>;

  /// Ends the loop; a request under way is cancelled. Then the handler is not called any more. The
  /// link stays as it is.
  ~Keeper() override {
    core_->Cancel(*stop_);
    thread_.reset();
    core_->Unfollow(*this);
  }
  Keeper(const Keeper&) = delete;
  Keeper& operator=(const Keeper&) = delete;

 private:
  friend class Client;
  using State = LinkChange::State;

  // While the device is away; doubled each time.
  static constexpr detail::Milliseconds kFirstPause{1000};
  static constexpr detail::Milliseconds kLongestPause{60'000};
  // The system removes a pairing in the background.
  static constexpr detail::Milliseconds kUnpairPause{2000};

  Keeper(std::shared_ptr<detail::Core> core, std::string name, KeepOptions options,
         OnChange onChange)
      : core_(std::move(core)),
        name_(std::move(name)),
        options_(std::move(options)),
        stop_(detail::Core::MakeParent()),
        onChange_(core_, std::move(onChange)) {
    core_->Follow(*this);
    thread_ = core_->State().System().Start([this] { Run(); });
  }

  void Run() {
    detail::Milliseconds pause = kFirstPause;
    while (!IsStopped()) {
      const Outcome outcome = detail::ConnectDevice(*core_, name_, options_.connect, NewRequest());
      Report(outcome);
      if (outcome) {
        pause = kFirstPause;
        KeepUp();
      } else {
        UnpairIfDue(outcome);
        PauseUnlessStopped(pause);
        pause = std::min(2 * pause, kLongestPause);
      }
    }
  }

  // Until the link is down or was checked.
  void KeepUp() {
    {
      detail::Lock lock = core_->State().Enter();
      core_->State().WaitUntil(lock, core_->State().In(options_.checkEvery), [this] {
        return core_->IsCancelled(*stop_) || state_ != State::kUp;
      });
      if (core_->IsCancelled(*stop_) || state_ != State::kUp) {
        return;
      }
    }
    if (CanCheck()) {
      Check();
    }
  }

  bool CanProbe() const {
    try {
      return options_.canProbe == nullptr || options_.canProbe();
    } catch (...) {
      return false;
    }
  }

  bool CanCheck() {
    const std::optional<Link> link = core_->CurrentLink();
    std::string obstacle;
    if (!link) {
      return false;
    }
    if (link->remote.find(':') != std::string::npos) {
      obstacle = "the remote address is not IPv4";
    } else if (!CanProbe()) {
      obstacle = "no right to open raw sockets";
    }
    if (!obstacle.empty() && obstacle != obstacle_) {
      LinkChange change;
      change.state = State::kUnchecked;
      change.outcome.link = link;
      change.outcome.words = obstacle;
      onChange_.Call(std::move(change));
    }
    obstacle_ = obstacle;
    return obstacle.empty();
  }

  void Check() {
    const CheckResult check = detail::CheckLink(*core_, NewRequest());
    if (check.outcome.reason == Reason::kSilent) {
      detail::CloseLink(*core_, NewRequest());
    }
  }

  // The platform error of a device that was found may come from a pairing that one side has lost.
  void UnpairIfDue(const Outcome& outcome) {
    if (outcome.reason != Reason::kPlatformError || outcome.step == Step::kSearch ||
        std::exchange(isUnpaired_, true)) {
      return;
    }
    detail::UnpairDevice(*core_, name_, NewRequest());
    PauseUnlessStopped(kUnpairPause);
  }

  // It is cancelled when the keeper is stopped.
  std::shared_ptr<detail::Request> NewRequest() {
    return core_->MakeRequest(detail::TimeoutOf(options_.connect), stop_);
  }

  bool IsStopped() {
    const detail::Lock lock = core_->State().Enter();
    return core_->IsCancelled(*stop_);
  }

  void PauseUnlessStopped(detail::Milliseconds time) {
    detail::Lock lock = core_->State().Enter();
    core_->State().WaitUntil(lock, core_->State().In(time),
                             [this] { return core_->IsCancelled(*stop_); });
  }

  void Report(const Outcome& outcome) {
    const detail::Lock lock = core_->State().Enter();
    if (!core_->IsCancelled(*stop_)) {
      outcome ? ReportUp(outcome) : ReportDown(outcome);
    }
  }

  // The rest is under the core's lock.

  void OnLine(const log::LogLine& line) override {
    const bool isSilent = line.event == log::LogEvent::kRecovers ||
                          line.event == log::LogEvent::kRecoversByWatch ||
                          line.event == log::LogEvent::kNotRecovered;
    if (isSilent && state_ == State::kUp) {
      ReportLoss(State::kSilent, Reason::kSilent);
    }
  }

  void OnLink(const std::optional<Link>& link) override {
    if (link && link->name == name_) {
      Outcome outcome;
      outcome.link = link;
      ReportUp(std::move(outcome));
    } else if (state_ == State::kUp) {
      ReportLoss(State::kDown, Reason::kDisconnected);
    }
  }

  void ReportUp(Outcome outcome) {
    if (state_ == State::kUp && link_ == outcome.link) {
      return;
    }
    LinkChange change;
    change.state = state_ = State::kUp;
    change.outage = downSince_ ? core_->State().Now() - *downSince_ : detail::Milliseconds(0);
    link_ = outcome.link;
    change.outcome = std::move(outcome);
    downSince_.reset();
    reason_.reset();
    isUnpaired_ = false;
    onChange_.Call(std::move(change));
  }

  void ReportLoss(State state, Reason reason) {
    Outcome outcome;
    outcome.reason = reason;
    Report(state, std::move(outcome));
  }

  void ReportDown(const Outcome& outcome) {
    if (reason_ != outcome.reason) {
      Report(State::kDown, outcome);
    }
  }

  void Report(State state, Outcome outcome) {
    if (state_ == State::kUp) {
      downSince_ = core_->State().Now();
    }
    LinkChange change;
    change.state = state_ = state;
    reason_ = outcome.reason;
    change.outcome = std::move(outcome);
    onChange_.Call(std::move(change));
    core_->State().NotifyAll();
  }

  const std::shared_ptr<detail::Core> core_;
  const std::string name_;
  const KeepOptions options_;
  const std::shared_ptr<detail::Request> stop_;  // cancelled when the loop has to end
  detail::Handler<LinkChange> onChange_;
  std::string obstacle_;  // of the latest check; used by the loop alone
  // Guarded by the core's lock.
  State state_ = State::kDown;
  std::optional<Reason> reason_;  // that was reported
  std::optional<Link> link_;
  std::optional<detail::Milliseconds> downSince_;
  bool isUnpaired_ = false;  // in this outage
  std::unique_ptr<Runtime::Thread> thread_;
};

}  // namespace lanvoss
