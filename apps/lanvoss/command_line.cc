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
    "The options above can be given before or after every command; COMMAND --help shows the\n"
    "command's own options. The result goes to standard output, error messages to standard error.\n"
    "On a terminal the last line shows the progress of an operation.\n"
    "\n"
    "Exit codes:\n"
    "  0    done\n"
    "  1    the device was not found\n"
    "  2    bad usage, a bad operation, or a bad file\n"
    "  3    the platform failed\n"
    "  4    the link is dead: it was lost and could not be brought back\n"
    "  5    the device could not be paired\n"
    "  6    the device was found, but no link came up\n"
    "  130  interrupted; a second Ctrl-C ends the program at once. For `keep`, 0\n";

// The help of one command; lanvoss run has its own.
constexpr char kCommandFooter[] =
    "lanvoss --help shows the options that every command has, and the exit codes.\n";

// The options of every command.
void AddCommonOptions(CLI::App& app, CommandLine& line) {
  app.add_option("--dir", line.directory,
                 "Folder of the device cache (default: one of the user's for each radio)")
      ->type_name("DIR");
  app.add_option("--radio", line.radio, "Radio to use: " + RadioNames())->type_name("RADIO");
  app.add_option("--scenario", line.scenarioFile,
                 "Use the simulated devices of this JSON file instead of a radio")
      ->type_name("FILE");
  app.add_flag(
      "--json", line.json,
      "Write each notification and each result as a JSON object, one per line, and no log");
  app.add_flag("--verbose", line.verbose, "Show the library's log too");
  app.add_flag("--quiet", line.quiet, "Write only the result, and show no progress");
  app.add_option("--log", line.logFile, "Append the log to this file")->type_name("FILE");
  app.add_option("--timeline", line.timelineFile,
                 "Draw what happened: a picture (.svg) or a trace for trace viewers (.json)")
      ->type_name("FILE");
}

void AddCommand(CLI::App& app, const Command& command, CommandLine& line) {
  CLI::App& added = *app.add_subcommand(command.name, command.help);
  added.fallthrough();
  added.group("Commands");
  added.footer(kCommandFooter);
  added.callback([&line, &command] { line.command = &command; });
  command.addOptions(added, line);
}

// What is wrong with the arguments; empty: nothing.
std::string ProblemOf(const CommandLine& line) {
  if (line.name && line.name->empty()) {
    return "NAME is empty";
  }
  if (line.name && line.name->find('\n') != std::string::npos) {
    return "NAME contains a line feed";  // which separates the fields of a request
  }
  if (line.radio && line.scenarioFile) {
    return "--radio and --scenario cannot be used together";
  }
  if (line.timelineFile && !timeline::IsTimelineFile(*line.timelineFile)) {
    return *line.timelineFile + ": the name must end in .svg (a picture) or .json (a trace)";
  }
  if (line.json && line.command->run == RunShell) {
    return "the shell has no --json; use lanvoss run --json with operations on standard input";
  }
  if (line.radio && !IsRadioName(*line.radio)) {
    return "unknown radio \"" + *line.radio + "\"; use " + RadioNames();
  }
  return {};
}

std::string ProblemOf(const CLI::App& app, const CLI::Error& error) {
  const bool lacksCommand = error.get_name() == "RequiredError" && app.get_subcommands().empty();
  if (!lacksCommand) {
    return error.what();
  }
  const std::vector<std::string> unknown = app.remaining();
  return unknown.empty() ? "a command is required" : "unknown command \"" + unknown.front() + "\"";
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
  app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
    return "lanvoss: " + ProblemOf(*failed, error) + "\nRun with --help for more information.\n";
  });
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.get_formatter()->label("Positionals", "Arguments");
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

void AddTimeoutOption(CLI::App& command, CommandLine& line) {
  constexpr int kLongestTimeoutS = 86'400;
  command.add_option("--timeout", line.timeoutS, "Give up after S seconds")
      ->check(CLI::Range(1, kLongestTimeoutS).description(""))
      ->type_name("S");
}

ConnectOptions ConnectOptionsOf(const CommandLine& line) {
  ConnectOptions options;
  if (line.timeoutS) {
    options.timeout = std::chrono::seconds(*line.timeoutS);
  }
  options.gap = std::chrono::milliseconds(line.gapMs.value_or(0));
  options.direct = line.direct;
  return options;
}

std::chrono::milliseconds SearchTimeoutOf(const CommandLine& line) {
  constexpr std::chrono::hours kForever(24 * 365);
  return line.timeoutS ? std::chrono::milliseconds(std::chrono::seconds(*line.timeoutS))
                       : std::chrono::milliseconds(kForever);
}

}  // namespace lanvoss::program
