// The library's object with its operations, one at a time, and what its log says about them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "lanvoss/client/record.h"
#include "lanvoss/client/task_queue.h"
#include "lanvoss/client/trampolines.h"
#include "lanvoss/lanvoss.h"

namespace lanvoss {

/// One notification of the library.
struct Notification {
  std::chrono::system_clock::time_point time;  ///< when the client got it
  int thread = 0;       ///< threads are numbered from 1, in the order of their first notification
  std::string kind;     ///< "info", "watch" and so on, see `NotifyCallback`
  std::string message;  ///< of the library, unchanged
};

/// Makes the library's object: `getLanvossPtr`, or a function of the same meaning.
using Factory =
    std::function<std::shared_ptr<LanvossInterface>(NotifyCallback notify, std::string directory)>;

namespace detail {

// What one caller wants, in one operation or in several. Cancelled with its parent too.
struct Request {
  Milliseconds begun{0};
  Milliseconds end{0};              // its deadline
  std::optional<unsigned> giveUps;  // of the core, when it began; none: GiveUp does not end it
  std::shared_ptr<const Request> parent;
  bool isCancelled = false;  // guarded by the core's lock
};

// What an operation of the library returned.
struct Returned {
  std::string text;
  std::int32_t number = 0;
  std::optional<std::string> error;  // the words of an exception
};

enum class Ending {
  kReturned,
  kNotBegun,  // earlier ones took until the deadline
  kOverdue,   // the deadline
  kCancelled,
};

struct Finished {
  Ending ending = Ending::kReturned;
  Returned returned;
  Record record;
  std::optional<Link> link;  // that there is at the end
};

// Follows the log. Both are called under the core's lock, on any thread.
class Follower {
 public:
  virtual ~Follower() = default;
  virtual void OnLine(const log::LogLine& line) = 0;
  virtual void OnLink(const std::optional<Link>& link) = 0;
};

// Operations run on a thread of the core's own, so that their callers can leave at the deadline,
// even if one hangs in the platform. Then the later ones wait for it.
class Core final : public Listener, public std::enable_shared_from_this<Core> {
 public:
  using Call = std::function<void(LanvossInterface& object, Returned& returned)>;
  using Sink = std::function<void(const Notification& notification)>;

  Core(const std::shared_ptr<Runtime>& runtime, Sink sink)
      : monitor_(runtime),
        sink_(std::move(sink)),
        worker_(runtime),
        releaser_(runtime),
        handlers_(runtime) {}

  // Throws what the factory throws, or std::exception if there is no thread to be had.
  void Open(const Factory& factory, const std::string& directory) {
    worker_.Start();
    releaser_.Start();
    trampoline_ = std::make_unique<Trampoline>(shared_from_this());
    object_ = factory(trampoline_->Callback(), directory);
  }

  // Gives everything up and destroys the object. Blocks until the running operation has ended,
  // and then as long as the end of the object does.
  void Close() {
    Lock lock = monitor_.Enter();
    isClosed_ = true;
    if (running_ != nullptr) {
      Release(lock, running_);
    }
    monitor_.NotifyAll();
    monitor_.Wait(lock, [this] { return IsIdle(); });
    lock.unlock();
    object_.reset();
    trampoline_.reset();
  }

  std::shared_ptr<Request> MakeRequest(Milliseconds timeout,
                                       std::shared_ptr<const Request> parent = nullptr) {
    const Lock lock = monitor_.Enter();
    auto request = std::make_shared<Request>();
    request->begun = monitor_.Now();
    request->end = monitor_.In(timeout);
    request->giveUps = giveUps_;
    request->parent = std::move(parent);
    return request;
  }

  // The parent of the requests of something that goes on until it is cancelled.
  static std::shared_ptr<Request> MakeParent() { return std::make_shared<Request>(); }

  void Cancel(Request& request) {
    const Lock lock = monitor_.Enter();
    request.isCancelled = true;
    monitor_.NotifyAll();
  }

  // Every request that has begun so far.
  void GiveUp() {
    const Lock lock = monitor_.Enter();
    ++giveUps_;
    monitor_.NotifyAll();
  }

  // Runs one operation in its turn. Blocks until it has returned, until the request's deadline, or
  // until the request is cancelled; it is released then, and ends later.
  Finished Run(const std::shared_ptr<Request>& request, Call call) {
    const auto operation = std::make_shared<Operation>(request, std::move(call));
    Lock lock = monitor_.Enter();
    if (!TakeTurn(lock, operation)) {
      return {IsCancelled(*request) ? Ending::kCancelled : Ending::kNotBegun, {}, {}, link_};
    }
    lock.unlock();
    worker_.Post([self = shared_from_this(), operation] { self->Perform(operation); });
    lock.lock();
    WaitUntil(lock, *operation, [&] { return operation->record.isStuck; });
    if (operation->record.isStuck) {
      Release(lock, operation);
      WaitUntil(lock, *operation, [] { return false; });
    }
    const bool isCancelled = IsCancelled(*request);
    const Ending ending = operation->hasEnded && !(isCancelled && operation->isReleased)
                              ? Ending::kReturned
                          : isCancelled ? Ending::kCancelled
                                        : Ending::kOverdue;
    if (!operation->hasEnded) {
      Release(lock, operation);
    }
    return {ending, operation->returned, operation->record, link_};
  }

  // Of the operation that runs on this thread: blocks until the pass before has been reported to
  // have ended, or until it will not be. The library's own wait for the stop ends a moment earlier,
  // and that report must not be taken for the end of the next watch.
  void WaitForPassEnd() {
    Lock lock = monitor_.Enter();
    const auto operation = running_;
    monitor_.WaitUntil(lock, monitor_.In(kLatestReport),
                       [&] { return !isPassRunning_ || operation->isReleased; });
  }

  // Of the operation that runs on this thread: blocks until its watch is over. False: it was
  // released before, or another one waits for its turn and `yields`.
  bool WaitForWatch(bool yields) {
    Lock lock = monitor_.Enter();
    const auto operation = running_;
    monitor_.WaitUntil(lock, operation->request->end, [&] {
      return operation->record.isWatchOver || operation->isReleased ||
             IsCancelled(*operation->request) || (yields && !turns_.empty());
    });
    return operation->record.isWatchOver;
  }

  // Of the running operation; none: nothing runs.
  std::optional<Record> RunningRecord() {
    const Lock lock = monitor_.Enter();
    return running_ == nullptr ? std::nullopt : std::optional(running_->record);
  }

  std::optional<Link> CurrentLink() {
    const Lock lock = monitor_.Enter();
    return link_;
  }

  // The name of the device to which the library holds a link, perhaps one that it has forgotten or
  // that has gone down; none: it holds none.
  std::optional<std::string> HeldBy() {
    const Lock lock = monitor_.Enter();
    return heldBy_;
  }

  // The library has forgotten the address of the link.
  void ForgetLink() {
    const Lock lock = monitor_.Enter();
    SetLink(std::nullopt);
  }

  // The follower learns at once whether there is a link.
  void Follow(Follower& follower) {
    const Lock lock = monitor_.Enter();
    followers_.push_back(&follower);
    follower.OnLink(link_);
  }
  // After that the follower is not called.
  void Unfollow(Follower& follower) {
    const Lock lock = monitor_.Enter();
    followers_.erase(std::find(followers_.begin(), followers_.end(), &follower));
  }

  Monitor& State() { return monitor_; }
  // Runs the host's handlers, on a thread of their own.
  TaskQueue& Handlers() { return handlers_; }
  // Under the lock.
  bool IsCancelled(const Request& request) const {
    return isClosed_ || request.isCancelled || request.giveUps.value_or(giveUps_) != giveUps_ ||
           (request.parent != nullptr && IsCancelled(*request.parent));
  }

  void OnNotify(std::string kind, std::string message) override {
    const log::LogLine line =
        kind == "info" ? log::ParseLogLine(message) : log::UnknownLine(message);
    if (sink_ != nullptr) {
      PassOn(std::move(kind), std::move(message));
    }
    const Lock lock = monitor_.Enter();
    for (Follower* const follower : followers_) {
      follower->OnLine(line);
    }
    Track(line);
    monitor_.NotifyAll();
  }

 private:
  struct Operation {
    Operation(std::shared_ptr<const Request> ofRequest, Call toCall)
        : request(std::move(ofRequest)), call(std::move(toCall)) {}
    const std::shared_ptr<const Request> request;
    const Call call;
    // Guarded by the core's lock.
    Record record;
    Returned returned;
    bool isReleased = false;
    bool hasEnded = false;
  };

  // A connection attempt of the library, which runs on one thread from its first line to its last.
  struct Attempt {
    std::shared_ptr<Operation> operation;  // in which it began; none: in no operation
    bool hasOpened = false;                // the latest open request gave a link
  };

  // An operation that was released gets so much time before it is released again: one that began
  // just after AbortConnect does not notice it.
  static constexpr Milliseconds kReleasePause{1000};
  // So much later than the library's wait for the end of a pass its report comes at most.
  static constexpr Milliseconds kLatestReport{500};

  bool IsIdle() const { return running_ == nullptr && releases_ == 0; }

  // False: the request was over before.
  bool TakeTurn(Lock& lock, const std::shared_ptr<Operation>& operation) {
    const Request& request = *operation->request;
    turns_.push_back(operation.get());
    monitor_.NotifyAll();
    const bool isOver = !monitor_.WaitUntil(lock, request.end, [&] {
      return IsCancelled(request) || (IsIdle() && turns_.front() == operation.get());
    }) || IsCancelled(request);
    turns_.erase(std::find(turns_.begin(), turns_.end(), operation.get()));
    monitor_.NotifyAll();
    if (isOver) {
      return false;
    }
    running_ = operation;
    operation->record.begun = monitor_.Now();
    return true;
  }

  template <class Condition>
  void WaitUntil(Lock& lock, Operation& operation, Condition holds) {
    monitor_.WaitUntil(lock, operation.request->end, [&] {
      return operation.hasEnded || IsCancelled(*operation.request) || holds();
    });
  }

  // On the worker.
  void Perform(const std::shared_ptr<Operation>& operation) {
    Returned returned;
    try {
      operation->call(*object_, returned);
    } catch (const std::exception& error) {
      returned.error = error.what();
    } catch (...) {
      returned.error = "an unknown error";
    }
    const Lock lock = monitor_.Enter();
    operation->returned = std::move(returned);
    operation->hasEnded = true;
    running_ = nullptr;
    monitor_.NotifyAll();
  }

  // Ends the waits of a running operation. Until that is done no other begins.
  void Release(Lock& lock, const std::shared_ptr<Operation>& operation) {
    if (std::exchange(operation->isReleased, true)) {
      return;
    }
    ++releases_;
    monitor_.NotifyAll();
    lock.unlock();
    releaser_.Post([self = shared_from_this(), operation] {
      Lock inner = self->monitor_.Enter();
      while (!operation->hasEnded) {
        const bool isLast = self->isClosed_;
        inner.unlock();
        self->EndWaits(isLast);
        inner.lock();
        self->monitor_.WaitUntil(inner, self->monitor_.In(kReleasePause),
                                 [&] { return operation->hasEnded; });
      }
      --self->releases_;
      self->monitor_.NotifyAll();
    });
    lock.lock();
  }

  void EndWaits(bool isLast) {
    try {
      object_->AbortConnect("");
      object_->StopWatch();
      if (isLast) {
        object_->DisConnect("");  // also ends the wait for the end of an unpairing
      }
    } catch (const std::exception&) {
      // The platform refused; it is tried again.
    }
  }

  void PassOn(std::string kind, std::string message) {
    Notification notification;
    notification.time = std::chrono::system_clock::now();
    {
      const Lock lock = monitor_.Enter();
      const int next = static_cast<int>(threads_.size()) + 1;
      notification.thread = threads_.emplace(std::this_thread::get_id(), next).first->second;
    }
    notification.kind = std::move(kind);
    notification.message = std::move(message);
    try {
      sink_(notification);
    } catch (...) {
      // It must not go into the library, where it would end an operation.
    }
  }

  // Under the lock.
  void Track(const log::LogLine& line) {
    using log::LogEvent;
    const auto thread = std::this_thread::get_id();
    if (line.event == LogEvent::kAttemptBegins) {
      attempts_[thread] = {running_, false};
    }
    const auto attempt = attempts_.find(thread);
    Operation* const operation =
        (attempt != attempts_.end() ? attempt->second.operation : running_).get();
    if (operation != nullptr) {
      Note(operation->record, line, monitor_.Now());
    }
    if (attempt != attempts_.end()) {
      TrackAttempt(attempt->second, line);
      // The end of any attempt ends the wait of the request that runs.
      const bool isEnd = line.event == LogEvent::kNoLink || line.event == LogEvent::kLinkUp;
      if (isEnd && running_ != nullptr && attempt->second.operation != running_) {
        running_->record.isDisturbed = true;
      }
    }
    if (line.event == LogEvent::kNoLink || line.event == LogEvent::kLinkUp ||
        line.event == LogEvent::kAttemptError) {
      attempts_.erase(thread);
    }
    if (line.event == LogEvent::kPassStarting) {
      isPassRunning_ = true;
    } else if (line.event == LogEvent::kWatchesAgain || line.event == LogEvent::kWatchEnded ||
               line.event == LogEvent::kWatchedGone) {
      isPassRunning_ = false;
    }
    if (line.event == LogEvent::kCloseEnded && !log::IsNotClosed(line)) {
      heldBy_.reset();
    }
    const bool isLost = (line.event == LogEvent::kStatusChanged && log::IsDisconnected(line)) ||
                        (line.event == LogEvent::kCloseEnded && !log::IsNotClosed(line)) ||
                        line.event == LogEvent::kRecovers ||
                        line.event == LogEvent::kRecoversByWatch;
    if (isLost) {
      SetLink(std::nullopt);
    }
  }

  // A link whose open request was cancelled or given up is the one that was held before, perhaps
  // to another device.
  void TrackAttempt(Attempt& attempt, const log::LogLine& line) {
    using log::LogEvent;
    if (line.event == LogEvent::kOpenDone) {
      attempt.hasOpened = true;
    } else if (line.event == LogEvent::kOpenGaveNone) {
      attempt.hasOpened = false;
    } else if (line.event == LogEvent::kLinkUp && attempt.hasOpened) {
      heldBy_ = line.name;
      if (!line.remote.empty()) {
        SetLink(Link{line.name, line.local, line.remote});
      }
    }
  }

  void SetLink(std::optional<Link> link) {
    link_ = std::move(link);
    for (Follower* const follower : followers_) {
      follower->OnLink(link_);
    }
  }

  Monitor monitor_;  // guards all fields but the object, the sink and the queues
  const Sink sink_;
  std::unique_ptr<Trampoline> trampoline_;
  std::shared_ptr<LanvossInterface> object_;  // changes only while nothing runs
  std::map<std::thread::id, int> threads_;
  std::deque<const Operation*> turns_;  // that wait to begin, in their order
  std::shared_ptr<Operation> running_;
  int releases_ = 0;  // under way
  unsigned giveUps_ = 0;
  bool isClosed_ = false;
  std::map<std::thread::id, Attempt> attempts_;
  std::optional<Link> link_;
  std::optional<std::string> heldBy_;
  bool isPassRunning_ = false;  // of the library's watcher, as far as it was reported
  std::vector<Follower*> followers_;
  TaskQueue worker_;
  TaskQueue releaser_;
  TaskQueue handlers_;
};

}  // namespace detail
}  // namespace lanvoss
