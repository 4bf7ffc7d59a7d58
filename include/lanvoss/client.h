/// @file
/// The comfortable way to use Lanvoss: requests with deadlines that say why there is no link.
///
/// @code
/// lanvoss::Client client;  // the device cache in the current directory
/// const lanvoss::Outcome outcome = client.Connect("Cam-7F21");
/// if (outcome) {
///   std::printf("%s\n", outcome.link->remote.c_str());
/// } else {
///   std::printf("%s\n", lanvoss::Explain(outcome, "Cam-7F21").c_str());
/// }
/// @endcode
///
/// It needs C++17 and nothing but `lanvoss.h`; all of it is in headers, so it works with every
/// build of the library. What is in `lanvoss::detail` may change.
///
/// What a client cannot change: the library itself writes its log to standard output. While nobody
/// reads a pipe that standard output goes to, each operation of the library blocks as soon as the
/// pipe is full. A request then ends at its deadline, and the client's destructor waits.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "lanvoss/client/device_watch.h"
#include "lanvoss/client/keeper.h"
#include "lanvoss/client/pending_connect.h"
#include "lanvoss/client/requests.h"
#include "lanvoss/lanvoss.h"

namespace lanvoss {

/// What a client needs to know from the beginning.
struct ClientOptions {
  /// The directory of the cache file; empty for the current one.
  std::string directory;
  /// Receives every notification of the library, the log among them. It is called on the library's
  /// threads, on several at once: it should return at once, and must not call the client.
  std::function<void(const Notification& notification)> onNotification;
  /// For hosts that simulate time.
  std::shared_ptr<Runtime> runtime = std::make_shared<StandardRuntime>();
};

/// How far the operation that runs is.
struct Progress {
  std::chrono::milliseconds elapsed{0};  ///< since it began
  std::string phase;                     ///< what is being done, in words; empty: nothing yet
  std::size_t devices = 0;               ///< that were reported
  std::size_t passes = 0;                ///< that the watcher has begun
  std::size_t opens = 0;                 ///< open requests that came back
};

/// One object of the library. Every operation may be called from any thread, also from inside a
/// handler. Operations are served one after the other, in their order: no request can end with the
/// address of another device. Each ends at its deadline at the latest, even if the platform hangs;
/// what hangs keeps the later ones waiting, which end with kBusy then.
///
/// It has two threads of its own, and one more for each pending request, watch and keeper, and for
/// all handlers. kMaxClients clients can exist at the same time.
///
/// Handlers are called one after the other, on one thread. They may take their time and call
/// everything. Exceptions of a handler are dropped. The first call may come before the operation
/// that was given the handler has returned.
class Client {
 public:
  /// @throws std::exception what `getLanvossPtr` throws, or when there is no thread to be had, or
  /// no
  ///   room for another client.
  explicit Client(ClientOptions options = {}) : Client(std::move(options), &getLanvossPtr) {}

  /// Over an object that `factory` makes.
  Client(ClientOptions options, const Factory& factory)
      : core_(std::make_shared<detail::Core>(options.runtime, std::move(options.onNotification))) {
    core_->Open(factory, options.directory);
  }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// Gives up every operation, closes the link and ends the object. Operations that have begun on
  /// other threads return kGivenUp. What the client has made (pending requests, watches, keepers)
  /// may live longer; it has ended then.
  /// @par Blocks
  ///   until the operation that runs has ended, usually some seconds at most; a call of the
  ///   platform on that thread must end by itself. Then as long as the end of the object does.
  ~Client() { core_->Close(); }

  /// Finds, pairs and connects a device. Returns at once when it is connected already.
  /// @throws std::invalid_argument the name is empty or has a line feed.
  Outcome Connect(const std::string& name, const ConnectOptions& options = {}) {
    detail::CheckName(name);
    return detail::ConnectDevice(*Hold(), name, options,
                                 core_->MakeRequest(detail::TimeoutOf(options)));
  }

  /// The same in the background. `onDone` is a handler; it is called once, unless the returned
  /// object was destroyed before.
  [[nodiscard]] std::unique_ptr<PendingConnect> ConnectAsync(
      const std::string& name, const ConnectOptions& options = {},
      PendingConnect::OnDone onDone = nullptr) {
    detail::CheckName(name);
    return std::unique_ptr<PendingConnect>(
        new PendingConnect(core_, name, options, std::move(onDone)));
  }

  /// Keeps the link to a device alive as long as the returned object lives. `onChange` is a
  /// handler.
  [[nodiscard]] std::unique_ptr<Keeper> Keep(const std::string& name, KeepOptions options,
                                             Keeper::OnChange onChange) {
    detail::CheckName(name);
    return std::unique_ptr<Keeper>(
        new Keeper(core_, name, std::move(options), std::move(onChange)));
  }

  /// Reports devices as long as the returned object lives. `onReport` is a handler.
  [[nodiscard]] std::unique_ptr<DeviceWatch> Watch(DeviceWatch::OnReport onReport) {
    return std::unique_ptr<DeviceWatch>(new DeviceWatch(core_, std::move(onReport)));
  }

  /// Looks for a device until it is found, without pairing or connecting it. With the name "" it
  /// makes one pass; then the outcome is kNone, and `inRange` has the names. The library forgets
  /// the address of a link at that, but does not close the link.
  Outcome Search(const std::string& name, std::chrono::milliseconds timeout = kSearchTimeout,
                 SearchUntil until = SearchUntil::kFound) {
    if (!name.empty()) {
      detail::CheckName(name);
    }
    return detail::SearchDevice(*Hold(), name, until, core_->MakeRequest(timeout));
  }

  /// Checks the link with echo requests. If nobody answers, it unpairs and pairs the device and
  /// connects it again; often the link comes up only with the next request.
  /// @par Blocks
  ///   usually 12 s when the device is silent, and the recovery.
  CheckResult Check(std::chrono::milliseconds timeout = ConnectOptions().timeout) {
    return detail::CheckLink(*Hold(), core_->MakeRequest(timeout));
  }

  /// Gives up all requests that have begun, and closes the link. No link is a success.
  Outcome Disconnect(std::chrono::milliseconds timeout = kDisconnectTimeout) {
    GiveUp();
    return detail::CloseLink(*Hold(), core_->MakeRequest(timeout));
  }

  /// Asks the system to remove the pairing with a device, which is looked for if it was not
  /// reported yet. The system does it in the background, in some seconds.
  Outcome Unpair(const std::string& name, std::chrono::milliseconds timeout = kSearchTimeout) {
    detail::CheckName(name);
    return detail::UnpairDevice(*Hold(), name, core_->MakeRequest(timeout));
  }

  /// Gives up all operations that have begun: their outcome is kGivenUp, at once. Keepers and
  /// watches go on.
  void GiveUp() { Hold()->GiveUp(); }

  /// The link that is up, as far as the library knows.
  std::optional<Link> CurrentLink() const { return core_->CurrentLink(); }

  /// Of the operation that runs; none when none runs.
  std::optional<Progress> CurrentProgress() const {
    const std::optional<detail::Record> record = core_->RunningRecord();
    if (!record) {
      return std::nullopt;
    }
    Progress progress;
    progress.elapsed = core_->State().Now() - record->begun;
    progress.phase = record->phase;
    progress.devices = record->names.size();
    progress.passes = record->passes;
    progress.opens = record->opens;
    return progress;
  }

  /// Calls operations of the library's object itself, in their turn, on a thread of the client's.
  /// `call` sets what is to be returned.
  CallResult Call(std::function<void(LanvossInterface& object, CallResult& result)> call,
                  std::chrono::milliseconds timeout = detail::Monitor::kLongestWait) {
    return detail::CallObject(*Hold(), std::move(call), core_->MakeRequest(timeout));
  }

 private:
  static constexpr std::chrono::seconds kSearchTimeout{60};
  static constexpr std::chrono::seconds kDisconnectTimeout{30};

  // For an operation that is on another thread while the client is destroyed.
  std::shared_ptr<detail::Core> Hold() const { return core_; }

  const std::shared_ptr<detail::Core> core_;
};

}  // namespace lanvoss
