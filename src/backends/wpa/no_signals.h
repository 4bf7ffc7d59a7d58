// Threads of this backend take no signals: a handler of the host must not run on them.
#pragma once

#include <csignal>
#include <functional>
#include <memory>
#include <pthread.h>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "backends/events/threads.h"
#include "backends/wpa/fail.h"

namespace lanvoss::wpa {

// While it exists, the calling thread, and every thread that it starts, blocks all signals.
class NoSignals {
 public:
  NoSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~NoSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  NoSignals(const NoSignals&) = delete;
  NoSignals& operator=(const NoSignals&) = delete;

 private:
  sigset_t before_{};
};

// Raises platform::Error when the system has no further thread.
template <typename Body>
std::thread StartThreadWithoutSignals(Body body) {
  const NoSignals inTheThread;
  try {
    return std::thread(std::move(body));
  } catch (const std::system_error& error) {
    Fail("no thread", error.code().value());
  }
}

// Threads in real time that block all signals.
class ThreadsWithoutSignals final : public events::Threads {
 public:
  std::unique_ptr<events::Thread> Start(std::string name, std::function<void()> body) override {
    const NoSignals inTheThread;
    return threads_->Start(std::move(name), std::move(body));
  }

 private:
  const std::shared_ptr<events::Threads> threads_ = events::RealThreads();
};

}  // namespace lanvoss::wpa
