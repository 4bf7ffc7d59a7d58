#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "commands/table.h"
#include "outcome.h"
#include "radio.h"
#include "scenario_folder.h"
#include "suggestion.h"
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
                 "Use the simulated devices of this JSON file instead of a radio, or those of a\n"
                 "name that lanvoss scenario list shows")
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

int Refuse(const std::string& problem) {
  std::fprintf(stderr, "lanvoss: %s\n", problem.c_str());
  return kExitUsage;
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

// A number: the exit code of a refusal.
std::optional<int> Prepare(CommandLine& line) {
  if (const std::string problem = ProblemOf(line); !problem.empty()) {
    return Refuse(problem);
  }
  try {
    if (line.scenarioFile) {
      line.scenarioFile = FindScenario(*line.scenarioFile);
    }
    if (line.timelineFile && line.command->over == Over::kLibrary) {
      timeline::TryToWrite(*line.timelineFile);  // or the picture of the whole run could be lost
    }
  } catch (const std::runtime_error& error) {
    return Refuse(error.what());
  }
  return std::nullopt;
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

// Of `app` and of the commands above it.
std::vector<std::string> OptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* each = &app; each != nullptr; each = each->get_parent()) {
    for (const CLI::Option* const option : each->get_options()) {
      for (const std::string& name : option->get_lnames()) {
        names.push_back("--" + name);
      }
    }
  }
  return names;
}

std::string NoCommand(const CLI::App& app, const std::string& word) {
  return "no command " + word + DidYouMean(word, CommandNames(app));
}

std::string ProblemOf(const CLI::App& app, const CLI::Error& error) {
  const CLI::App* command = &app;  // the innermost one that was given
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().back();
  }
  const std::vector<std::string> unknown = app.remaining(/*recurse=*/true);
  const auto option = std::ranges::find_if(
      unknown, [](const std::string& word) { return word.size() > 1 && word.front() == '-'; });
  const bool needsCommand = command->get_require_subcommand_min() > 0;
  if (needsCommand && !unknown.empty() && option != unknown.begin()) {
    return NoCommand(*command, unknown.front());
  }
  if (option != unknown.end()) {
    const std::string name = option->substr(0, option->find('='));
    return "no option " + name + DidYouMean(name, OptionNames(*command));
  }
  return needsCommand ? "a command is required" : error.what();
}

// `words` are a command and, if it has them, one of its own.
int ShowHelp(const CLI::App& app, const std::vector<std::string>& words) {
  const CLI::App* command = &app;
  std::string name = app.get_name();
  for (const std::string& word : words) {
    const auto all = command->get_subcommands([](const CLI::App*) { return true; });
    const auto found = std::ranges::find(all, word, &CLI::App::get_name);
    if (found == all.end()) {
      return Refuse(NoCommand(*command, word));
    }
    command = *found;
    name += " " + word;
  }
  // Not with help(), which shows the help of the command that was given: of "help".
  const std::string text =
      command->get_formatter()->make_help(command, name, CLI::AppFormatMode::Normal);
  std::fputs(text.c_str(), stdout);
  return kExitOk;
}

}  // namespace

std::optional<int> ParseCommandLine(int argc, char** argv, CommandLine& line) {
  CLI::App app("Reaches a named device over Wi-Fi Direct.", "lanvoss");
  app.allow_windows_style_options(false);  // a name may begin with a slash
  app.require_subcommand(1);
  app.set_version_flag("-V,--version", "lanvoss " LANVOSS_VERSION);
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
  std::vector<std::string> helpWords;
  CLI::App& help = *app.add_subcommand("help", "Show the help of a command, or this help");
  help.group("Commands");
  help.add_option("COMMAND", helpWords, "The command")->type_name("");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOk : kExitUsage;
  } catch (const OperationError& error) {
    return Refuse(error.what());
  }
  if (help.parsed()) {
    return ShowHelp(app, helpWords);
  }
  return Prepare(line);
}

CLI::App& AddCommand(CLI::App& parent, const Command& command, CommandLine& line) {
  CLI::App& added = *parent.add_subcommand(command.name, command.help);
  added.fallthrough();
  added.group("Commands");
  added.footer(kCommandFooter);
  added.callback([&line, &command] { line.command = &command; });
  command.addOptions(added, line);
  return added;
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
