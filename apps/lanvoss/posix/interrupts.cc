#include "interrupts.h"

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <pthread.h>

#include "notice.h"
#include "outcome.h"

namespace lanvoss::program {
namespace {

constexpr long kNanosecondsPerMs = 1'000'000;
constexpr timespec kNotice{.tv_sec = 0, .tv_nsec = kNoticeMs * kNanosecondsPerMs};

sigset_t Interrupts() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  return signals;
}

extern "C" void LeaveAtOnce(int /*signal*/) { std::_Exit(kExitAborted); }

}  // namespace

// Blocked in this thread and in all that it starts later.
void HoldInterrupts() {
  const sigset_t interrupts = Interrupts();
  pthread_sigmask(SIG_BLOCK, &interrupts, nullptr);
}

bool TakeInterrupt(const std::stop_token& over) {
  const sigset_t interrupts = Interrupts();
  while (!over.stop_requested()) {
    if (sigtimedwait(&interrupts, nullptr, &kNotice) > 0) {
      return true;
    }
  }
  return false;
}

// This thread takes them all, so that they leave when it no longer blocks them.
void LetNextInterruptLeave(bool leave) {
  std::signal(SIGINT, LeaveAtOnce);
  std::signal(SIGTERM, LeaveAtOnce);
  const sigset_t interrupts = Interrupts();
  pthread_sigmask(leave ? SIG_UNBLOCK : SIG_BLOCK, &interrupts, nullptr);
}

}  // namespace lanvoss::program
