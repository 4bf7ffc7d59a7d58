#include "farewell.h"

#include <chrono>
#include <cstdlib>
#include <stop_token>
#include <utility>

#include "console.h"
#include "pause.h"

namespace lanvoss::program {
namespace {

// Longer than the library needs when nothing hangs, which is about 15 seconds.
constexpr std::chrono::seconds kFarewellLimit(20);

}  // namespace

Farewell::Farewell(Outcome outcome)
    : limit_([outcome = std::move(outcome)](std::stop_token taken) {
        if (Pause(kFarewellLimit, std::move(taken))) {
          std::_Exit(Report(outcome));
        }
      }) {}

}  // namespace lanvoss::program
