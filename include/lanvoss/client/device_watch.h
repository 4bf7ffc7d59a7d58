/// @file
/// A watch for the devices in range that goes on until it is ended.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "lanvoss/client/handler.h"
#include "lanvoss/client/requests.h"

namespace lanvoss {

/// What the watcher reports of a device.
struct DeviceReport {
  bool isGone = false;  ///< the platform no longer sees it; most platforms say this late or never
  std::string name;     ///< as the device chose it: bytes to be shown, never to be trusted
  std::string id;       ///< the platform's; it ends in the hardware address
};

/// Made by `Client::Watch`. It makes one pass after the other. A request has priority: the pass
/// ends, and the next one follows after the request. While a link is up no pass is made, since the
/// library forgets the address of the link when a watch starts.
class DeviceWatch final : private detail::Follower {
 public:
  /// The host's handler of reports.
  using OnReport = std::function<void(const DeviceReport& report)>;

  /// Ends the watch. Then the handler is not called any more.
  ~DeviceWatch() override {
    core_->Cancel(*request_);
    thread_.reset();
    core_->Unfollow(*this);
  }
  DeviceWatch(const DeviceWatch&) = delete;
  DeviceWatch& operator=(const DeviceWatch&) = delete;

  /// The platform's words when it did not start the latest pass; empty if it did.
  std::string Error() const {
    const detail::Lock lock = core_->State().Enter();
    return error_;
  }

 private:
  friend class Client;

  static constexpr std::chrono::milliseconds kPassPause{500};
  static constexpr std::chrono::milliseconds kErrorPause{5000};

  DeviceWatch(std::shared_ptr<detail::Core> core, OnReport onReport)
      : core_(std::move(core)),
        request_(detail::Core::MakeParent()),
        onReport_(core_, std::move(onReport)) {
    core_->Follow(*this);
    thread_ = core_->State().System().Start([this] { Run(); });
  }

  void Run() {
    while (WaitForNoLink()) {
      const detail::Finished pass = detail::Search(
          *core_, "", true, core_->MakeRequest(detail::Monitor::kLongestWait, request_));
      const std::string error = pass.returned.error ? *pass.returned.error : pass.record.watchError;
      detail::Lock lock = core_->State().Enter();
      error_ = error;
      core_->State().WaitUntil(lock, core_->State().In(error.empty() ? kPassPause : kErrorPause),
                               [this] { return core_->IsCancelled(*request_); });
    }
  }

  // False: the watch is to end.
  bool WaitForNoLink() {
    detail::Lock lock = core_->State().Enter();
    core_->State().Wait(lock, [this] { return !isLinkUp_ || core_->IsCancelled(*request_); });
    return !core_->IsCancelled(*request_);
  }

  void OnLine(const log::LogLine& line) override {
    if (line.event == log::LogEvent::kReported || line.event == log::LogEvent::kGone) {
      onReport_.Call({line.event == log::LogEvent::kGone, line.name, line.id});
    }
  }
  void OnLink(const std::optional<Link>& link) override { isLinkUp_ = link.has_value(); }

  const std::shared_ptr<detail::Core> core_;
  const std::shared_ptr<detail::Request> request_;
  detail::Handler<DeviceReport> onReport_;
  bool isLinkUp_ = false;  // guarded by the core's lock, as the next
  std::string error_;
  std::unique_ptr<Runtime::Thread> thread_;
};

}  // namespace lanvoss
