#include "farewell.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <unistd.h>
#include <utility>

#include "console.h"

namespace lanvoss::program {
namespace {

// Longer than the library needs when nothing hangs, which is about 15 seconds.
constexpr std::chrono::seconds kFarewellLimit(20);

void LeaveAfterLimit(std::stop_token taken, const Outcome& outcome) {
  std::mutex mutex;
  std::condition_variable_any limit;
  std::unique_lock lock(mutex);
  limit.wait_for(lock, taken, kFarewellLimit, [] { return false; });
  if (!taken.stop_requested()) {
    _exit(Report(outcome));
  }
}

}  // namespace

Farewell::Farewell(Outcome outcome)
    : limit_([outcome = std::move(outcome)](std::stop_token taken) {
        LeaveAfterLimit(std::move(taken), outcome);
      }) {}

}  // namespace lanvoss::program
