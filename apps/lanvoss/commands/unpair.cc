#include <CLI/CLI.hpp>
#include <chrono>

#include "commands/link.h"
#include "commands/table.h"

namespace lanvoss::program {
namespace {

// The system does not say when it has done it. It needs the program for less time than this.
constexpr std::chrono::seconds kUnpairTime(3);

}  // namespace

void AddUnpairOptions(CLI::App& command, CommandLine& line) {
  AddNameOption(command, line);
  AddTimeoutOption(command, line);
}

Outcome RunUnpair(Session& session) {
  const CommandLine& line = session.Line();
  const lanvoss::Outcome outcome = session.Library().Unpair(*line.name, SearchTimeoutOf(line));
  if (!outcome) {
    return ToOutcome(*line.name, outcome);
  }
  session.SleepUnlessStopped(kUnpairTime);
  return {.result = "asked the system to remove the pairing with " + *line.name + "\n",
          .facts = AttemptFacts(*line.name, outcome)};
}

}  // namespace lanvoss::program
