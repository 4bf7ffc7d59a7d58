#include "interruption.h"

#include <utility>

#include "system.h"

namespace lanvoss::program {

Interruption::Interruption(std::function<void()> onInterrupt)
    : onInterrupt_(std::move(onInterrupt)) {
  HoldInterrupts();
  listener_ = std::thread([this] { Listen(); });
}

Interruption::~Interruption() { Close(); }

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
      renewedOrClosed_.Wait();
    }
    LetNextInterruptLeave(false);
  }
}

}  // namespace lanvoss::program
