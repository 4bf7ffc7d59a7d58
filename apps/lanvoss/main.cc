// The host program: one operation of the library per run.
#include <exception>
#include <memory>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "console.h"
#include "farewell.h"
#include "interruption.h"
#include "ip_command.h"
#include "outcome.h"
#include "pairing.h"
#include "scenario.h"
#include "watch_command.h"

namespace lanvoss::program {
namespace {

Outcome RunCommand(LanvossInterface& object, const CommandLine& line,
                   const Interruption& interruption) {
  try {
    return line.command == Command::kIp ? RunIp(object, line)
                                        : RunWatch(object, line, interruption.Token());
  } catch (const std::exception& error) {
    return {kExitPlatform, {}, error.what()};
  }
}

Outcome Run(const CommandLine& line) {
  Interruption interruption;
  auto object =
      getLanvossPtr(line.command == Command::kWatch ? &HearWatch : nullptr, line.directory);
  interruption.Ends(object);

  Outcome outcome = RunCommand(*object, line, interruption);
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
      UseScenario(LoadScenario(*line.scenarioFile));
    }
    return Report(Run(line));
  } catch (const ScenarioError& error) {
    return Report({kExitUsage, {}, error.what()});
  } catch (const std::exception& error) {
    return Report({kExitPlatform, {}, error.what()});
  }
}

}  // namespace
}  // namespace lanvoss::program

int main(int argc, char** argv) { return lanvoss::program::Main(argc, argv); }
