#include "interruption.h"

#include <csignal>
#include <ctime>
#include <pthread.h>
#include <unistd.h>

#include "console.h"
#include "outcome.h"

namespace lanvoss::program {
namespace {

// An operation that begins just after it was given up has not noticed, so that is repeated.
constexpr timespec kGiveUpPause{.tv_sec = 1, .tv_nsec = 0};

// Tells the listener that the program is over.
int OverSignal() { return SIGRTMIN; }

sigset_t Interrupts() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  return signals;
}

sigset_t InterruptsAndOver() {
  sigset_t signals = Interrupts();
  sigaddset(&signals, OverSignal());
  return signals;
}

// Waits for the first signal. False: the program is over.
bool InterruptArrives() {
  const sigset_t awaited = InterruptsAndOver();
  int arrived = 0;
  sigwait(&awaited, &arrived);
  return arrived != OverSignal();
}

bool IsOverWithinPause() {
  sigset_t over;
  sigemptyset(&over);
  sigaddset(&over, OverSignal());
  return sigtimedwait(&over, nullptr, &kGiveUpPause) == OverSignal();
}

extern "C" void LeaveAtOnce(int /*signal*/) { _exit(kExitInterrupted); }

// What runs may hang in the platform, which nothing can end but the end of the process.
void LetNextInterruptLeave() {
  std::signal(SIGINT, LeaveAtOnce);
  std::signal(SIGTERM, LeaveAtOnce);
  const sigset_t interrupts = Interrupts();
  pthread_sigmask(SIG_UNBLOCK, &interrupts, nullptr);
}

}  // namespace

Interruption::Interruption() {
  const sigset_t awaited = InterruptsAndOver();
  pthread_sigmask(SIG_BLOCK, &awaited, nullptr);
  listener_ = std::thread([this] { Listen(); });
}

void Interruption::Ends(const std::shared_ptr<LanvossInterface>& object) {
  const std::lock_guard lock(mutex_);
  object_ = object;
}

void Interruption::Close() {
  if (listener_.joinable()) {
    pthread_kill(listener_.native_handle(), OverSignal());
    listener_.join();
  }
}

void Interruption::Listen() {
  if (!InterruptArrives()) {
    return;
  }
  Complain("interrupted");
  LetNextInterruptLeave();
  arrived_.request_stop();
  do {
    GiveUp();
  } while (!IsOverWithinPause());
}

void Interruption::GiveUp() {
  std::shared_ptr<LanvossInterface> object;
  {
    const std::lock_guard lock(mutex_);
    object = object_.lock();
  }
  if (object != nullptr) {
    object->AbortConnect("");
    object->StopWatch();
  }
}

}  // namespace lanvoss::program
