#include "progress.h"

#include <chrono>

#include "situation.h"

namespace lanvoss::program {
namespace {

// Left out while it tells nothing.
std::string Count(const char* what, std::size_t count) {
  return count == 0 ? "" : std::string(", ") + what + ": " + std::to_string(count);
}

}  // namespace

std::string Progress() {
  using std::chrono::steady_clock;
  const Situation situation = TheSituation();
  if (situation.isOver) {
    return {};
  }
  const auto elapsed =
      std::chrono::floor<std::chrono::seconds>(steady_clock::now() - situation.begun);
  return std::to_string(elapsed.count()) + " s" + Count("devices", situation.devices) +
         Count("passes", static_cast<std::size_t>(situation.passes)) +
         Count("opens", static_cast<std::size_t>(situation.opens)) +
         (situation.phase.empty() ? "" : ", " + situation.phase);
}

}  // namespace lanvoss::program
