#include "keep_command.h"

#include <algorithm>
#include <chrono>
#include <string>

#include "addresses.h"
#include "clock.h"
#include "link_check.h"
#include "pause.h"
#include "results.h"

namespace lanvoss::program {
namespace {

// A device that is away is asked for again after these, each time twice as long.
constexpr std::chrono::seconds kFirstPause(1);
constexpr std::chrono::seconds kLongestPause(60);

void TellChange(const CommandLine& line, const std::string& addresses) {
  const std::string state = addresses.empty() ? "down" : "up " + addresses;
  Facts facts =
      addresses.empty() ? Facts().AddText("name", *line.name) : LinkFacts(*line.name, addresses);
  facts.AddFlag("up", !addresses.empty());
  PrintResult(line, FormatTime(LocalTimeUs()) + " " + state + "\n", facts);
}

}  // namespace

Outcome RunKeep(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted) {
  const std::chrono::seconds checkPause(line.everyS);
  std::string addresses;
  auto pause = kFirstPause;
  while (!interrupted.stop_requested()) {
    if (!addresses.empty()) {
      CheckLink(object);  // it pairs and connects anew what no longer answers
    }
    const std::string current = AskForAddresses(object, *line.name, interrupted);
    if (current != addresses && !interrupted.stop_requested()) {
      addresses = current;
      TellChange(line, addresses);
    }
    if (!addresses.empty()) {
      pause = kFirstPause;
      Pause(checkPause, interrupted);
    } else {
      Pause(pause, interrupted);
      pause = std::min(2 * pause, kLongestPause);
    }
  }
  return {};
}

}  // namespace lanvoss::program
