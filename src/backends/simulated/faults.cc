#include "backends/simulated/faults.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace lanvoss::simulated {
namespace {

constexpr unsigned kEveryLater = std::numeric_limits<unsigned>::max();

// False when the failure is a result of none.
bool Raise(const Failure& failure) {
  switch (failure.kind) {
    case Failure::Kind::kError:
      throw platform::Error(failure.hresult, failure.message);
    case Failure::Kind::kCancelled:
      throw platform::CancelledError();
    case Failure::Kind::kOther:
      throw std::runtime_error("simulated failure");
    case Failure::Kind::kNone:
      break;
  }
  return false;
}

}  // namespace

void Faults::FailNth(Call call, unsigned nth, Failure failure) {
  Place(call, nth, 1, 1.0, std::move(failure));
}

void Faults::FailFrom(Call call, unsigned nth, Failure failure) {
  Place(call, nth, kEveryLater, 1.0, std::move(failure));
}

void Faults::FailShare(Call call, double probability, Failure failure) {
  Place(call, 1, kEveryLater, probability, std::move(failure));
}

void Faults::Place(Call call, unsigned first, unsigned count, double probability, Failure failure) {
  const std::lock_guard lock(mutex_);
  const unsigned from = counts_[call] + first;
  const unsigned to = count == kEveryLater ? kEveryLater : from + count - 1;
  orders_[call] = {from, to, probability, std::move(failure)};
}

void Faults::OnCall(Call call, std::function<void()> hook) {
  const std::lock_guard lock(mutex_);
  hooks_[call] = std::move(hook);
}

void Faults::Clear() {
  const std::lock_guard lock(mutex_);
  orders_.clear();
  hooks_.clear();
}

unsigned Faults::Count(Call call) const {
  const std::lock_guard lock(mutex_);
  const auto count = counts_.find(call);
  return count == counts_.end() ? 0 : count->second;
}

unsigned Faults::Failures() const {
  const std::lock_guard lock(mutex_);
  return failures_;
}

bool Faults::Enter(Call call) {
  std::function<void()> hook;
  {
    const std::lock_guard lock(mutex_);
    if (const auto found = hooks_.find(call); found != hooks_.end()) {
      hook = found->second;
    }
  }
  if (hook) {
    hook();
  }
  Order due;
  bool fails = false;
  {
    const std::lock_guard lock(mutex_);
    const unsigned number = ++counts_[call];
    if (const auto order = orders_.find(call); order != orders_.end()) {
      due = order->second;
      fails = number >= due.from && number <= due.to &&
              std::generate_canonical<double, 32>(random_) < due.probability;
      failures_ += fails ? 1 : 0;
    }
  }
  return !fails || Raise(due.failure);
}

}  // namespace lanvoss::simulated
