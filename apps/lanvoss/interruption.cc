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

std::stop_token Interruption::Token() const {
  const std::lock_guard lock(mutex_);
  return arrived_.get_token();
}

void Interruption::Renew() {
  const std::lock_guard lock(mutex_);
  if (arrived_.stop_requested()) {
    arrived_ = {};
    renewed_.request_stop();
  }
}

void Interruption::Close() {
  {
    const std::lock_guard lock(mutex_);
    renewed_.request_stop();
  }
  listener_ = {};
}

void Interruption::Listen(const std::stop_token& over) {
  while (TakeInterrupt(over)) {
    Complain("interrupted");
    // What runs may hang in the platform, which nothing can end but the end of the process.
    LetNextInterruptLeave(true);
    const std::stop_token renewed = BeginInterruption();
    do {
      GiveUp();
    } while (!over.stop_requested() && Pause(kGiveUpPause, renewed));
    LetNextInterruptLeave(false);
  }
}

// Tells everyone of the interruption. The token tells that it is over.
std::stop_token Interruption::BeginInterruption() {
  const std::lock_guard lock(mutex_);
  renewed_ = {};
  arrived_.request_stop();
  return renewed_.get_token();
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
