#include "command_line.h"

#include <CLI/CLI.hpp>
#include <limits>
#include <vector>

#include "console.h"
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

constexpr char kBeforeOperations[] =
    "Each OPERATION is one argument, as in: lanvoss run \"ip Cam-7F21\" ping disconnect\n"
    "Without one they are read from standard input, one a line, as they come; blank lines and\n"
    "lines that begin with # are skipped. A NAME may have blanks in it.\n"
    "\n";

constexpr char kBehindOperations[] =
    "\n"
    "After each, a line \"> OPERATION -> RESULT\" follows on standard output.\n";

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

// A command of which line.commandName tells, and whose options go before it or behind it.
CLI::App& AddCommand(CLI::App& app, CommandLine& line, Command command, const std::string& name,
                     const std::string& description) {
  CLI::App& added = *app.add_subcommand(name, description);
  added.fallthrough();
  added.callback([&line, command, name] {
    line.command = command;
    line.commandName = name;
  });
  return added;
}

void AddName(CLI::App& command, CommandLine& line) {
  command.add_option("NAME", line.name, "The device")->required()->type_name("");
}

void AddIpCommand(CLI::App& app, CommandLine& line) {
  CLI::App& command = AddCommand(
      app, line, Command::kIp, "ip",
      "Find, pair and connect a device; print the addresses of the link as LOCAL,REMOTE");
  AddName(command, line);
  const auto gap =
      command
          .add_option("--gap", line.gapMs, "Keep at least MS milliseconds from the last disconnect")
          ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()).description(""))
          ->type_name("MS");
  command.add_flag("--direct", line.direct, "Connect at once to the id remembered for NAME")
      ->excludes(gap);
}

void AddPingCommand(CLI::App& app, CommandLine& line) {
  AddName(AddCommand(app, line, Command::kPing, "ping",
                     "Connect a device, check the link, and connect anew what no longer answers"),
          line);
}

void AddKeepCommand(CLI::App& app, CommandLine& line) {
  constexpr int kLongestEveryS = 86'400;
  CLI::App& command =
      AddCommand(app, line, Command::kKeep, "keep",
                 "Keep a device connected until interrupted; print each change of the link");
  AddName(command, line);
  command.add_option("--every", line.everyS, "Check the link every S seconds (default: 10)")
      ->check(CLI::Range(1, kLongestEveryS).description(""))
      ->type_name("S");
}

void AddWatchCommand(CLI::App& app, CommandLine& line) {
  CLI::App& command =
      AddCommand(app, line, Command::kWatch, "watch",
                 "Print the devices that are there, or look for one until it is found");
  const auto name = command.add_option("NAME", line.name, "The device to look for")->type_name("");
  command.add_flag("--keep", line.keep, "Watch on until the device is gone again")->needs(name);
}

void AddDisconnectCommand(CLI::App& app, CommandLine& line) {
  AddName(AddCommand(app, line, Command::kDisconnect, "disconnect",
                     "Take the link to a device over, or make it, and close it"),
          line);
}

void AddUnpairCommand(CLI::App& app, CommandLine& line) {
  AddName(AddCommand(app, line, Command::kUnpair, "unpair",
                     "Look for a device and make the system forget its pairing"),
          line);
}

void AddRunCommand(CLI::App& app, CommandLine& line, std::vector<std::string>& operations) {
  CLI::App& command =
      AddCommand(app, line, Command::kRun, "run", "Do several operations one after the other");
  command.add_option("OPERATION", operations, "What to do, see below")->type_name("");
  command.footer(std::string(kBeforeOperations) + kOperationHelp + kBehindOperations);
}

void AddTimelineCommand(CLI::App& app, CommandLine& line) {
  CLI::App& command = AddCommand(app, line, Command::kTimeline, "timeline",
                                 "Draw what a saved log tells: what happened when");
  command.add_option("LOG", line.savedLog, "What the program has printed; - for standard input")
      ->required()
      ->type_name("");
  command
      .add_option("FILE", line.timelineFile,
                  "A picture (.svg) or a trace (.json); default: LOG's name with .svg")
      ->type_name("");
}

void AddCommands(CLI::App& app, CommandLine& line, std::vector<std::string>& operations) {
  AddIpCommand(app, line);
  AddPingCommand(app, line);
  AddKeepCommand(app, line);
  AddWatchCommand(app, line);
  AddDisconnectCommand(app, line);
  AddUnpairCommand(app, line);
  AddCommand(app, line, Command::kDevices, "devices", "Show the devices of the cache as a table");
  AddRunCommand(app, line, operations);
  AddCommand(app, line, Command::kShell, "shell",
             "Do operations as they are typed; \"help\" tells which");
  AddTimelineCommand(app, line);
  AddCommand(app, line, Command::kDoctor, "doctor",
             "Say what this machine lacks for reaching devices, and how to mend it");
}

std::vector<Operation> ParseOperations(const std::vector<std::string>& texts) {
  std::vector<Operation> operations;
  operations.reserve(texts.size());
  for (const std::string& text : texts) {
    operations.push_back(
        ParseOperation(text, "operation " + std::to_string(operations.size() + 1)));
  }
  return operations;
}

// A line feed parts the fields of a request, so no name can have one.
std::string FaultOf(const CommandLine& line) {
  if (line.name && line.name->empty()) {
    return "NAME is empty";
  }
  if (line.name && line.name->find('\n') != std::string::npos) {
    return "NAME has a line feed in it";
  }
  if (line.radio && line.scenarioFile) {
    return "a scenario brings a radio of its own";
  }
  if (line.timelineFile && !IsTimelineFile(*line.timelineFile)) {
    return *line.timelineFile + ": a timeline ends in .svg (a picture) or .json (a trace)";
  }
  if (line.json && line.command == Command::kShell) {
    return "a shell is for people; lanvoss run --json does operations from standard input";
  }
  if (line.radio && !IsRadioName(*line.radio)) {
    return "no radio \"" + *line.radio + "\"; there is " + RadioNames();
  }
  return {};
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
  std::vector<std::string> operations;
  AddCommands(app, line, operations);
  try {
    app.parse(argc, argv);
    line.operations = ParseOperations(operations);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOk : kExitUsage;
  } catch (const OperationError& error) {
    Complain(error.what());
    return kExitUsage;
  }
  if (const std::string fault = FaultOf(line); !fault.empty()) {
    Complain(fault);
    return kExitUsage;
  }
  return std::nullopt;
}

}  // namespace lanvoss::program
