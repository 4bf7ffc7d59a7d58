#include "interruption.h"

#include <chrono>
#include <utility>

#include "system.h"

namespace lanvoss::program {
namespace {

// An operation that begins just after AbortConnect does not notice it, so this is repeated.
constexpr std::chrono::seconds kGiveUpPause(1);

}  // namespace

Interruption::Interruption(std::function<void()> onInterrupt)
    : onInterrupt_(std::move(onInterrupt)) {
  HoldInterrupts();
  listener_ = std::thread([this] { Listen(); });
}

Interruption::~Interruption() { Close(); }

void Interruption::Ends(const std::shared_ptr<LanvossInterface>& object) {
  const std::lock_guard lock(mutex_);
  object_ = object;
}

void Interruption::Renew() {
  if (happened_.exchange(false)) {
    renewedOrClosed_.Wake();
  }
}

void Interruption::Close() {
  if (listener_.joinable()) {
    isClosed_ = true;
    renewedOrClosed_.Wake();
    EndInterrupts();
    listener_.join();
  }
}

void Interruption::Listen() {
  while (TakeInterrupt()) {
    // An operation that hangs in the platform ends only with the process.
    LetNextInterruptLeave(true);
    happened_ = true;
    onInterrupt_();
    while (happened_ && !isClosed_) {
      GiveUp();
      renewedOrClosed_.WaitUntil(WakeUp::Clock::now() + kGiveUpPause);
    }
    LetNextInterruptLeave(false);
  }
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
