/// @file
/// What a client needs of the system: threads, waits and a clock.
#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace lanvoss {

/// Hosts need not know it: a client takes that of the standard library. A simulation that owns time
/// brings its own. Every operation may be called from any thread.
class Runtime {
 public:
  /// Ends the wait of one thread. Once set, it stays set until a wait has ended by it.
  class Signal {
   public:
    virtual ~Signal() = default;
    /// Wakes the thread that waits, or the next one that will.
    virtual void Set() = 0;
    /// Blocks until the signal is set, for `time` at most.
    virtual void Wait(std::chrono::milliseconds time) = 0;
  };

  /// A running thread. Its destructor waits until the thread has ended.
  class Thread {
   public:
    virtual ~Thread() = default;
  };

  virtual ~Runtime() = default;
  /// A steady clock; where it begins does not matter.
  virtual std::chrono::milliseconds Now() = 0;
  /// A signal that is not set.
  virtual std::unique_ptr<Signal> MakeSignal() = 0;
  /// Runs `body`, which throws nothing, on a new thread. Throws std::exception if there is none.
  virtual std::unique_ptr<Thread> Start(std::function<void()> body) = 0;
};

/// That of the standard library.
class StandardRuntime final : public Runtime {
 public:
  std::chrono::milliseconds Now() override {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
  }
  std::unique_ptr<Signal> MakeSignal() override { return std::make_unique<StandardSignal>(); }
  std::unique_ptr<Thread> Start(std::function<void()> body) override {
    return std::make_unique<StandardThread>(std::move(body));
  }

 private:
  class StandardSignal final : public Signal {
   public:
    void Set() override {
      const std::lock_guard<std::mutex> lock(mutex_);
      isSet_ = true;
      set_.notify_one();
    }
    void Wait(std::chrono::milliseconds time) override {
      std::unique_lock<std::mutex> lock(mutex_);
      set_.wait_for(lock, time, [this] { return isSet_; });
      isSet_ = false;
    }

   private:
    std::mutex mutex_;
    std::condition_variable set_;
    bool isSet_ = false;  // guarded by the mutex
  };

  class StandardThread final : public Thread {
   public:
    explicit StandardThread(std::function<void()> body) : thread_(std::move(body)) {}
    ~StandardThread() override {
      if (thread_.get_id() == std::this_thread::get_id()) {
        thread_.detach();  // what it runs keeps all that it still needs
      } else {
        thread_.join();
      }
    }

   private:
    std::thread thread_;
  };
};

namespace detail {

using Milliseconds = std::chrono::milliseconds;
using Lock = std::unique_lock<std::mutex>;

// One lock, and waits for what it guards.
class Monitor {
 public:
  // No wait is longer, so that sums of times do not overflow.
  static constexpr std::chrono::hours kLongestWait{24 * 365};

  explicit Monitor(std::shared_ptr<Runtime> runtime) : runtime_(std::move(runtime)) {}

  Runtime& System() const { return *runtime_; }
  Lock Enter() { return Lock(mutex_); }
  Milliseconds Now() const { return runtime_->Now(); }
  Milliseconds In(Milliseconds time) const {
    return Now() + std::min<Milliseconds>(time, kLongestWait);
  }

  // Blocks, without the lock, until `holds` or until `end`. Returns the former. `holds` is called
  // under the lock.
  template <class Condition>
  bool WaitUntil(Lock& lock, Milliseconds end, Condition holds) {
    const std::unique_ptr<Runtime::Signal> signal = runtime_->MakeSignal();
    waiters_.push_back(signal.get());
    for (Milliseconds now = Now(); !holds() && now < end; now = Now()) {
      lock.unlock();
      signal->Wait(end - now);
      lock.lock();
    }
    waiters_.erase(std::find(waiters_.begin(), waiters_.end(), signal.get()));
    return holds();
  }
  template <class Condition>
  void Wait(Lock& lock, Condition holds) {
    while (!WaitUntil(lock, In(kLongestWait), holds)) {
    }
  }

  // Under the lock, after each change that somebody may wait for.
  void NotifyAll() {
    for (Runtime::Signal* const waiter : waiters_) {
      waiter->Set();
    }
  }

 private:
  const std::shared_ptr<Runtime> runtime_;
  std::mutex mutex_;
  std::vector<Runtime::Signal*> waiters_;  // guarded by the mutex
};

}  // namespace detail
}  // namespace lanvoss
