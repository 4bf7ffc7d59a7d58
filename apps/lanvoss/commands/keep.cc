#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <string>

#include "clock.h"
#include "commands/link.h"
#include "commands/table.h"
#include "radio.h"
#include "system.h"

namespace lanvoss::program {
namespace {

using State = LinkChange::State;

// "16 s"
std::string Seconds(std::chrono::milliseconds time) {
  return std::to_string(std::chrono::round<std::chrono::seconds>(time).count()) + " s";
}

std::string TextOf(const LinkChange& change) {
  switch (change.state) {
    case State::kUp:
      return "up " + AddressesOf(*change.outcome.link) +
             (change.outage.count() > 0 ? " after " + Seconds(change.outage) : "");
    case State::kDown:
      return std::string("down (") + NameOf(change.outcome.reason) +
             (change.outcome.words.empty() ? "" : ": " + change.outcome.words) + ")";
    case State::kSilent:
      return "silent, pairing again";
    case State::kUnchecked:
      return "not checked: " + change.outcome.words;
  }
  return {};
}

const char* NameOf(State state) {
  switch (state) {
    case State::kUp:
      return "up";
    case State::kDown:
      return "down";
    case State::kSilent:
      return "silent";
    case State::kUnchecked:
      return "unchecked";
  }
  return "";
}

// To who has started the program as a service, on one line.
void TellStatus(std::string text) {
  std::ranges::replace(text, '\n', ' ');
  TellServiceManager("STATUS=" + text);
}

void PrintChange(Session& session, const LinkChange& change) {
  const std::string& name = *session.Line().name;
  JsonObject facts =
      AttemptFacts(name, change.outcome)
          .AddText("state", NameOf(change.state))
          .AddFlag("up", change.state == State::kUp || change.state == State::kUnchecked);
  if (change.state == State::kUp) {
    facts.AddNumber("outage_ms", static_cast<int>(change.outage.count()));
  }
  TellStatus(TextOf(change));
  session.PrintResult(FormatTime(LocalTimeUs()) + " " + TextOf(change) + "\n", facts);
}

// One request and one check, for timers and scripts.
Outcome KeepOnce(Session& session) {
  const CommandLine& line = session.Line();
  Client& library = session.Library();
  lanvoss::Outcome outcome = library.Connect(*line.name, ConnectOptionsOf(line));
  if (outcome && ObstacleToProbe(session, *outcome.link).empty() && !library.Check().outcome) {
    outcome = library.Connect(*line.name, ConnectOptionsOf(line));
  }
  return ToOutcome(*line.name, outcome);
}

}  // namespace

void AddKeepOptions(CLI::App& command, CommandLine& line) {
  constexpr int kLongestEveryS = 86'400;
  AddNameOption(command, line);
  AddTimeoutOption(command, line);
  const auto every =
      command.add_option("--every", line.everyS, "Check the link every S seconds (default: 10)")
          ->check(CLI::Range(1, kLongestEveryS).description(""))
          ->type_name("S");
  command.add_flag("--once", line.once, "Connect and check the link once, and end")
      ->excludes(every);
}

// Without --once it ends only after an interrupt, which is its normal end.
Outcome RunKeep(Session& session) {
  const CommandLine& line = session.Line();
  if (line.once) {
    return KeepOnce(session);
  }
  session.EndByInterrupt();
  TellStatus("looking for " + *line.name);
  KeepOptions options;
  options.connect = ConnectOptionsOf(line);
  options.checkEvery = std::chrono::seconds(line.everyS);
  options.canProbe = [&session] { return session.CanProbe(); };
  const auto keeper = session.Library().Keep(
      *line.name, options, [&session](const LinkChange& change) { PrintChange(session, change); });
  // The service is ready though no link is up yet: a device that is away must not hold up the start
  // of the machine, or count as a failure of the service.
  TellServiceManager("READY=1");
  session.WaitForInterrupt();
  TellServiceManager("STOPPING=1");
  return {};
}

}  // namespace lanvoss::program
