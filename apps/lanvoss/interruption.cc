#include "interruption.h"

#include <chrono>

#include "console.h"
#include "interrupts.h"
#include "pause.h"

namespace lanvoss::program {
namespace {

// An operation that begins just after it was given up has not noticed, so that is repeated.
constexpr std::chrono::seconds kGiveUpPause(1);

}  // namespace

Interruption::Interruption() {
  HoldInterrupts();
  listener_ = std::jthread([this](std::stop_token over) { Listen(over); });
}

void Interruption::Ends(const std::shared_ptr<LanvossInterface>& object) {
  const std::lock_guard lock(mutex_);
  object_ = object;
}

void Interruption::Close() { listener_ = {}; }

void Interruption::Listen(const std::stop_token& over) {
  if (!TakeInterrupt(over)) {
    return;
  }
  Complain("interrupted");
  // What runs may hang in the platform, which nothing can end but the end of the process.
  LetNextInterruptLeave();
  arrived_.request_stop();
  do {
    GiveUp();
  } while (Pause(kGiveUpPause, over));
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
