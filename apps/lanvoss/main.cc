// The host program: a few operations of the library per run.
#include <exception>
#include <memory>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "console.h"
#include "doctor.h"
#include "farewell.h"
#include "interruption.h"
#include "ip_command.h"
#include "link_check.h"
#include "outcome.h"
#include "ping_command.h"
#include "run_command.h"
#include "scenario.h"
#include "simulation.h"
#include "streams.h"
#include "watch_command.h"

namespace lanvoss::program {
namespace {

// The host's function that a command has to be run with.
NotifyCallback ListenerFor(Command command) {
  switch (command) {
    case Command::kIp:
    case Command::kDoctor:
      return nullptr;
    case Command::kWatch:
      return &HearWatch;
    case Command::kPing:
    case Command::kRun:
      return &HearCheck;
  }
  return nullptr;
}

Outcome RunCommand(LanvossInterface& object, const CommandLine& line,
                   const Interruption& interruption) {
  switch (line.command) {
    case Command::kIp:
      return RunIp(object, line);
    case Command::kPing:
      return RunPing(object, line, interruption.Token());
    case Command::kWatch:
      return RunWatch(object, line, interruption.Token());
    case Command::kRun:
      return RunOperations(object, line, interruption.Token());
    case Command::kDoctor:
      break;  // it needs no object
  }
  return {};
}

Outcome TryCommand(LanvossInterface& object, const CommandLine& line,
                   const Interruption& interruption) {
  try {
    return RunCommand(object, line, interruption);
  } catch (const std::exception& error) {
    return {kExitPlatform, {}, error.what()};
  }
}

Outcome Run(const CommandLine& line) {
  Interruption interruption;
  auto object = getLanvossPtr(ListenerFor(line.command), line.directory);
  interruption.Ends(object);

  Outcome outcome = TryCommand(*object, line, interruption);
  if (interruption.Happened()) {
    outcome = {kExitInterrupted};
  }
  {
    // The object logs its end. Only then does the result follow, as the last line.
    const Farewell farewell(outcome);
    object.reset();
    interruption.Close();
  }
  return interruption.Happened() ? Outcome{kExitInterrupted} : outcome;
}

int Main(int argc, char** argv) {
  PrepareStreams();
  CommandLine line;
  if (const auto exitCode = ParseCommandLine(argc, argv, line)) {
    return *exitCode;
  }
  try {
    if (line.scenarioFile) {
      Simulate(LoadScenario(*line.scenarioFile));
    }
    return Report(line.command == Command::kDoctor ? RunDoctor() : Run(line));
  } catch (const ScenarioError& error) {
    return Report({kExitUsage, {}, error.what()});
  } catch (const std::exception& error) {
    return Report({kExitPlatform, {}, error.what()});
  }
}

}  // namespace
}  // namespace lanvoss::program

int main(int argc, char** argv) { return lanvoss::program::Main(argc, argv); }
