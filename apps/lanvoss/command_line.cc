#include "command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "commands/table.h"
#include "outcome.h"
#include "radio.h"
#include "timeline/write_timeline.h"

namespace lanvoss::program {
namespace {

constexpr char kFooter[] =
    "The options above go with every command, before it or behind it; COMMAND --help tells the\n"
    "command's own. The log and then the result go to standard output, complaints to standard\n"
    "error. On a terminal a last line tells how far an operation is.\n"
    "\n"
    "Exit codes:\n"
    "  0    done\n"
    "  1    the device was not found\n"
    "  2    bad usage, a bad operation, or a bad file\n"
    "  3    the platform failed\n"
    "  4    the link is dead: it was lost and could not be brought back\n"
    "  5    the device could not be paired\n"
    "  6    the device was found, but no address came: no link came up\n"
    "  130  aborted by an interrupt; a second Ctrl-C leaves at once\n";

// The program's own.
void AddCommonOptions(CLI::App& app, CommandLine& line) {
  app.add_option("--dir", line.directory,
                 "Where the device cache lives (default: the current directory)")
      ->type_name("DIR");
  app.add_option("--radio", line.radio, "Stand on this radio: " + RadioNames())->type_name("RADIO");
  app.add_option("--scenario", line.scenarioFile,
                 "Stand on the simulated neighbourhood of this JSON file")
      ->type_name("FILE");
  app.add_flag("--json", line.json,
               "Write each notification and each result as a JSON object on a line, and no log");
  app.add_flag("--quiet", line.quiet, "Write the result alone");
  app.add_option("--log", line.logFile, "Append the log to this file instead of showing it")
      ->type_name("FILE");
  app.add_option("--timeline", line.timelineFile,
                 "Draw what happened: a picture (.svg), or a trace for trace viewers (.json)")
      ->type_name("FILE");
}

void AddCommand(CLI::App& app, const Command& command, CommandLine& line) {
  CLI::App& added = *app.add_subcommand(command.name, command.help);
  added.fallthrough();
  added.callback([&line, &command] { line.command = &command; });
  command.addOptions(added, line);
}

// What is wrong with the arguments; empty: nothing.
std::string ProblemOf(const CommandLine& line) {
  if (line.name && line.name->empty()) {
    return "NAME is empty";
  }
  if (line.name && line.name->find('\n') != std::string::npos) {
    return "NAME has a line feed in it";  // which separates the fields of a request
  }
  if (line.radio && line.scenarioFile) {
    return "a scenario brings a radio of its own";
  }
  if (line.timelineFile && !timeline::IsTimelineFile(*line.timelineFile)) {
    return *line.timelineFile + ": a timeline ends in .svg (a picture) or .json (a trace)";
  }
  if (line.json && line.command->run == RunShell) {
    return "a shell is for people; lanvoss run --json does operations from standard input";
  }
  if (line.radio && !IsRadioName(*line.radio)) {
    return "no radio \"" + *line.radio + "\"; there is " + RadioNames();
  }
  return {};
}

int Refuse(const std::string& problem) {
  std::fprintf(stderr, "lanvoss: %s\n", problem.c_str());
  return kExitUsage;
}

}  // namespace

std::optional<int> ParseCommandLine(int argc, char** argv, CommandLine& line) {
  CLI::App app("Reaches a named device over Wi-Fi Direct.", "lanvoss");
  app.allow_windows_style_options(false);  // a name may begin with a slash
  app.require_subcommand(1);
  app.set_version_flag("--version", "lanvoss " LANVOSS_VERSION);
  app.footer(kFooter);
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return "lanvoss: " + std::string(error.what()) + "\nRun with --help for more information.\n";
  });
  AddCommonOptions(app, line);
  for (const Command& command : kCommands) {
    AddCommand(app, command, line);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOk : kExitUsage;
  } catch (const OperationError& error) {
    return Refuse(error.what());
  }
  const std::string problem = ProblemOf(line);
  return problem.empty() ? std::nullopt : std::optional(Refuse(problem));
}

void AddNameOption(CLI::App& command, CommandLine& line) {
  command.add_option("NAME", line.name, "The device")->required()->type_name("");
}

}  // namespace lanvoss::program
