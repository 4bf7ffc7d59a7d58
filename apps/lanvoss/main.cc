// The host program: a few operations of the library per run.
#include <exception>
#include <memory>
#include <optional>

#include "lanvoss/lanvoss.h"

#include "backends/simulated/scenario_file/scenario_file.h"
#include "command_line.h"
#include "commands/devices.h"
#include "commands/disconnect.h"
#include "commands/doctor.h"
#include "commands/ip.h"
#include "commands/keep.h"
#include "commands/link_check.h"
#include "commands/ping.h"
#include "commands/run.h"
#include "commands/shell.h"
#include "commands/timeline.h"
#include "commands/unpair.h"
#include "commands/watch.h"
#include "console.h"
#include "farewell.h"
#include "interruption.h"
#include "notifications.h"
#include "outcome.h"
#include "progress.h"
#include "radio.h"
#include "recording.h"
#include "results.h"
#include "situation.h"
#include "streams.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::program {
namespace {

// Who listens to the library during a command.
void ListenFor(const CommandLine& line, const platform::Platform& platform) {
  Listen(&HearSituation);
  Listen(ComplainOfProbesIn(platform.system));
  if (line.command == Command::kShell) {
    Listen(&HearNames);
  }
  if (line.json && !line.quiet) {
    Listen(&PrintNotification);
  }
  if (line.timelineFile) {
    Listen(&Record);
  }
}

ConsoleOptions ConsoleFor(const CommandLine& line) {
  using Log = ConsoleOptions::Log;
  ConsoleOptions options;
  if (line.logFile) {
    options.log = Log::kKept;
    options.logFile = *line.logFile;
  } else if (line.json || line.quiet) {
    options.log = Log::kDropped;
  }
  if (!line.quiet) {
    options.standing = &Progress;
  }
  return options;
}

Outcome RunCommand(LanvossInterface& object, const CommandLine& line, Interruption& interruption) {
  switch (line.command) {
    case Command::kIp:
      return RunIp(object, line);
    case Command::kPing:
      return RunPing(object, line, interruption.Token());
    case Command::kKeep:
      return RunKeep(object, line, interruption.Token());
    case Command::kWatch:
      return RunWatch(object, line, interruption.Token());
    case Command::kDisconnect:
      return RunDisconnect(object, line);
    case Command::kUnpair:
      return RunUnpair(object, line, interruption.Token());
    case Command::kRun:
      return RunOperations(object, line, interruption.Token());
    case Command::kShell:
      return RunShell(object, line, interruption);
    case Command::kDevices:
    case Command::kTimeline:
    case Command::kDoctor:
      break;  // they need no object
  }
  return {};
}

Outcome TryCommand(LanvossInterface& object, const CommandLine& line, Interruption& interruption) {
  try {
    return RunCommand(object, line, interruption);
  } catch (const std::exception& error) {
    return {kExitPlatform, {}, error.what()};
  }
}

Outcome RunOnObject(const CommandLine& line, const std::optional<simulated::Scenario>& scenario) {
  Interruption interruption;
  const platform::Platform platform = CreatePlatform(line.radio, scenario);
  ListenFor(line, platform);
  OpenConsole(ConsoleFor(line));  // starts a thread, which interrupts must find holding them
  auto object = MakeLanvoss(platform, &Hear, line.directory);
  interruption.Ends(object);

  Outcome outcome = TryCommand(*object, line, interruption);
  if (interruption.Happened()) {
    outcome = {kExitAborted};
  }
  {
    // The object logs its end. Only then does the result follow, as the last line.
    const Farewell farewell(line, outcome);
    object.reset();
    interruption.Close();
  }
  return interruption.Happened() ? Outcome{kExitAborted} : outcome;
}

Outcome Run(const CommandLine& line) {
  std::optional<simulated::Scenario> scenario;
  if (line.scenarioFile) {
    scenario = simulated::LoadScenario(*line.scenarioFile);
  }
  if (line.command == Command::kDevices) {
    return RunDevices(line);
  }
  if (line.command == Command::kTimeline) {
    return RunTimeline(line);
  }
  return line.command == Command::kDoctor ? RunDoctor(line) : RunOnObject(line, scenario);
}

int Main(int argc, char** argv) {
  PrepareStreams();
  CommandLine line;
  if (const auto exitCode = ParseCommandLine(argc, argv, line)) {
    return *exitCode;
  }
  try {
    return Report(line, Run(line));
  } catch (const simulated::ScenarioError& error) {
    return Report(line, {kExitUsage, {}, error.what()});
  } catch (const ConsoleError& error) {
    return Report(line, {kExitUsage, {}, error.what()});
  } catch (const std::exception& error) {
    return Report(line, {kExitPlatform, {}, error.what()});
  }
}

}  // namespace
}  // namespace lanvoss::program

// What cannot even be reported may end the program.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) { return lanvoss::program::Main(argc, argv); }
