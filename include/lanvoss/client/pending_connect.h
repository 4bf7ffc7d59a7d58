/// @file
/// A request that runs in the background.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "lanvoss/client/handler.h"
#include "lanvoss/client/requests.h"

namespace lanvoss {

/// Made by `Client::ConnectAsync`. Every operation may be called from any thread.
class PendingConnect {
 public:
  /// The host's handler of the outcome.
  using OnDone = std::function<void(const Outcome& outcome)>;

  /// Cancels the request if it has not ended. Then `onDone` is not called any more.
  ~PendingConnect() {
    Cancel();
    thread_.reset();
  }
  PendingConnect(const PendingConnect&) = delete;
  PendingConnect& operator=(const PendingConnect&) = delete;

  /// Gives the request up: its outcome is kGivenUp, at once. Does nothing if it has ended.
  void Cancel() { core_->Cancel(*request_); }

  /// The outcome; none as long as the request runs.
  std::optional<Outcome> Result() const {
    const detail::Lock lock = core_->State().Enter();
    return outcome_;
  }

  /// Blocks until the request has ended, for `time` at most. None: it has not.
  std::optional<Outcome> WaitFor(std::chrono::milliseconds time) {
    detail::Lock lock = core_->State().Enter();
    core_->State().WaitUntil(lock, core_->State().In(time),
                             [this] { return outcome_.has_value(); });
    return outcome_;
  }

  /// Blocks until the request has ended, which is not later than its deadline.
  Outcome Wait() {
    detail::Lock lock = core_->State().Enter();
    core_->State().Wait(lock, [this] { return outcome_.has_value(); });
    return *outcome_;
  }

 private:
  friend class Client;

  PendingConnect(std::shared_ptr<detail::Core> core, const std::string& name,
                 const ConnectOptions& options, OnDone onDone)
      : core_(std::move(core)),
        request_(core_->MakeRequest(detail::TimeoutOf(options))),
        onDone_(core_, std::move(onDone)) {
    thread_ = core_->State().System().Start([this, name, options] { Run(name, options); });
  }

  void Run(const std::string& name, const ConnectOptions& options) {
    const Outcome outcome = detail::ConnectDevice(*core_, name, options, request_);
    {
      const detail::Lock lock = core_->State().Enter();
      outcome_ = outcome;
      core_->State().NotifyAll();
    }
    onDone_.Call(outcome);
  }

  const std::shared_ptr<detail::Core> core_;
  const std::shared_ptr<detail::Request> request_;
  detail::Handler<Outcome> onDone_;
  std::optional<Outcome> outcome_;  // guarded by the core's lock
  std::unique_ptr<Runtime::Thread> thread_;
};

}  // namespace lanvoss
