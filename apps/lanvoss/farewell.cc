#include "farewell.h"

#include <chrono>
#include <cstdlib>
#include <stop_token>
#include <utility>

#include "pause.h"
#include "results.h"

namespace lanvoss::program {
namespace {

// Longer than the library needs when nothing hangs, which is about 15 seconds.
constexpr std::chrono::seconds kFarewellLimit(20);

}  // namespace

Farewell::Farewell(const CommandLine& line, Outcome outcome)
    : limit_([&line, outcome = std::move(outcome)](std::stop_token taken) {
        if (Pause(kFarewellLimit, std::move(taken))) {
          std::_Exit(Report(line, outcome));
        }
      }) {}

}  // namespace lanvoss::program
