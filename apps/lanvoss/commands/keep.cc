#include "commands/keep.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <string>

#include "clock.h"
#include "commands/addresses.h"
#include "commands/link_check.h"
#include "console.h"
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

// Probes the link. One that stays silent although it was recovered before is let go, or its address
// would be the answer on and on.
void CheckAndLetGo(LanvossInterface& object) {
  const LinkCheck check = CheckLink(object);  // it pairs and connects anew what no longer answers
  if (check.replies == 0 && check.addresses.empty()) {
    object.DisConnect("");
  }
}

// The addresses of the link after a check; empty while the device is away.
std::string KeepLink(LanvossInterface& object, const std::string& name, bool isUp,
                     const std::stop_token& interrupted) {
  try {
    if (isUp) {
      CheckAndLetGo(object);
    }
    return AskForAddresses(object, name, interrupted);
  } catch (const std::exception& error) {
    Complain(error.what());  // the platform's; it may be better later
    return {};
  }
}

}  // namespace

Outcome RunKeep(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted) {
  const std::chrono::seconds checkPause(line.everyS);
  std::string addresses;
  bool isFirst = true;
  auto pause = kFirstPause;
  while (!interrupted.stop_requested()) {
    const std::string current = KeepLink(object, *line.name, !addresses.empty(), interrupted);
    if ((current != addresses || isFirst) && !interrupted.stop_requested()) {
      addresses = current;
      isFirst = false;
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
