// A client's threads, waits and clock on the time of a test.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <new>
#include <utility>

#include "lanvoss/client/runtime.h"

#include "backends/events/threads.h"
#include "platform/system.h"

namespace lanvoss::test {

template <class Time>  // a System and Threads
class SystemRuntime final : public Runtime {
 public:
  explicit SystemRuntime(std::shared_ptr<Time> time) : time_(std::move(time)) {}

  std::chrono::milliseconds Now() override { return std::chrono::milliseconds(time_->Clock()); }

  std::unique_ptr<Signal> MakeSignal() override {
    return std::make_unique<EventSignal>(time_->CreateManualResetEvent(false));
  }

  std::unique_ptr<Thread> Start(std::function<void()> body) override {
    return std::make_unique<RunningThread>(time_->Start("client", std::move(body)));
  }

 private:
  class EventSignal final : public Signal {
   public:
    explicit EventSignal(std::unique_ptr<platform::Event> event) : event_(std::move(event)) {
      if (event_ == nullptr) {
        throw std::bad_alloc();
      }
    }
    void Set() override { event_->Set(); }
    void Wait(std::chrono::milliseconds time) override {
      constexpr std::chrono::milliseconds kLongest(1'000'000'000);
      event_->Wait(static_cast<std::uint32_t>(std::min(time, kLongest).count()));
      event_->Reset();
    }

   private:
    const std::unique_ptr<platform::Event> event_;
  };

  class RunningThread final : public Thread {
   public:
    explicit RunningThread(std::unique_ptr<events::Thread> thread) : thread_(std::move(thread)) {}

   private:
    const std::unique_ptr<events::Thread> thread_;
  };

  const std::shared_ptr<Time> time_;
};

}  // namespace lanvoss::test
