#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <exception>
#include <string>

#include "clock.h"
#include "commands/link.h"
#include "commands/table.h"

namespace lanvoss::program {
namespace {

// The pause before a device that is away is asked for again. It doubles each time.
constexpr std::chrono::seconds kFirstPause(1);
constexpr std::chrono::seconds kLongestPause(60);

void PrintChange(Session& session, const std::string& addresses) {
  const std::string& name = *session.Line().name;
  const std::string state = addresses.empty() ? "down" : "up " + addresses;
  JsonObject facts =
      addresses.empty() ? JsonObject().AddText("name", name) : LinkFacts(name, addresses);
  facts.AddFlag("up", !addresses.empty());
  session.PrintResult(FormatTime(LocalTimeUs()) + " " + state + "\n", facts);
}

// Probes the link. A link that stays silent after its recovery is closed, or the library would
// return its address again and again.
void CheckAndLetGo(Session& session) {
  const LinkCheck check = CheckLink(session);  // it pairs and connects a silent device again
  if (check.replies == 0 && check.addresses.empty()) {
    session.Object().DisConnect("");
  }
}

// The addresses of the link after a check; empty while the device is away.
std::string KeepLink(Session& session, bool isUp) {
  try {
    if (isUp) {
      CheckAndLetGo(session);
    }
    return AskForAddresses(session, *session.Line().name);
  } catch (const std::exception& error) {
    session.Output().Complain(error.what());  // of the platform; it may work later
    return {};
  }
}

}  // namespace

void AddKeepOptions(CLI::App& command, CommandLine& line) {
  constexpr int kLongestEveryS = 86'400;
  AddNameOption(command, line);
  command.add_option("--every", line.everyS, "Check the link every S seconds (default: 10)")
      ->check(CLI::Range(1, kLongestEveryS).description(""))
      ->type_name("S");
}

// Ends only after an interrupt.
Outcome RunKeep(Session& session) {
  const std::chrono::seconds checkPause(session.Line().everyS);
  std::string addresses;
  bool isFirst = true;
  auto pause = kFirstPause;
  while (!session.IsInterrupted()) {
    const std::string current = KeepLink(session, !addresses.empty());
    if ((current != addresses || isFirst) && !session.IsInterrupted()) {
      addresses = current;
      isFirst = false;
      PrintChange(session, addresses);
    }
    if (!addresses.empty()) {
      pause = kFirstPause;
      session.SleepUnlessStopped(checkPause);
    } else {
      session.SleepUnlessStopped(pause);
      pause = std::min(2 * pause, kLongestPause);
    }
  }
  return {};
}

}  // namespace lanvoss::program
