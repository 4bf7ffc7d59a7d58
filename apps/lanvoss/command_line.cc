#include "command_line.h"

#include <CLI/CLI.hpp>
#include <limits>
#include <vector>

#include "console.h"
#include "outcome.h"
#include "radio.h"

namespace lanvoss::program {
namespace {

constexpr char kFooter[] =
    "The log and then the result go to standard output, complaints to standard error.\n"
    "\n"
    "Exit codes:\n"
    "  0    done\n"
    "  1    no link came up, or the device was not found\n"
    "  2    bad usage, a bad operation, or a bad scenario file\n"
    "  3    the platform failed\n"
    "  4    the link is dead: it was lost and could not be brought back\n"
    "  130  interrupted; a second Ctrl-C leaves at once\n";

constexpr char kRunFooter[] =
    "Each OPERATION is one argument, as in: lanvoss run \"ip Cam-7F21\" ping disconnect\n"
    "Without one they are read from standard input, one a line, as they come; blank lines and\n"
    "lines that begin with # are skipped. A NAME may have blanks in it.\n"
    "\n"
    "  ip [--gap MS | --direct] NAME  find, pair and connect; the result is LOCAL,REMOTE\n"
    "  ping                           probe the link, and pair and connect a silent device anew\n"
    "  disconnect                     close the link\n"
    "  unpair NAME                    start to remove the pairing\n"
    "  watch [[--keep] NAME]          start to look for devices\n"
    "  stop                           stop looking\n"
    "  abort                          give the attempt up\n"
    "  sleep MS                       wait\n"
    "\n"
    "After each, a line \"> OPERATION -> RESULT\" follows on standard output.\n";

void AddCommonOptions(CLI::App& command, CommandLine& line) {
  command
      .add_option("--dir", line.directory,
                  "Where the device cache lives (default: the current directory)")
      ->type_name("DIR");
  command
      .add_option("--scenario", line.scenarioFile,
                  "Stand on the simulated neighbourhood of this JSON file")
      ->type_name("FILE");
}

// The program's own, before the command or behind it.
void AddRadioOption(CLI::App& app, CommandLine& line) {
  app.add_option("--radio", line.radio, "Stand on this radio: " + RadioNames())->type_name("RADIO");
  for (CLI::App* command : app.get_subcommands(nullptr)) {
    command->fallthrough();
  }
}

void AddIpCommand(CLI::App& app, CommandLine& line) {
  CLI::App& command = *app.add_subcommand(
      "ip", "Find, pair and connect a device; print the addresses of the link as LOCAL,REMOTE");
  command.add_option("NAME", line.name, "The device")->required()->type_name("");
  const auto gap =
      command
          .add_option("--gap", line.gapMs, "Keep at least MS milliseconds from the last disconnect")
          ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()).description(""))
          ->type_name("MS");
  command.add_flag("--direct", line.direct, "Connect at once to the id remembered for NAME")
      ->excludes(gap);
  AddCommonOptions(command, line);
  command.callback([&line] { line.command = Command::kIp; });
}

void AddPingCommand(CLI::App& app, CommandLine& line) {
  CLI::App& command = *app.add_subcommand(
      "ping", "Connect a device, check the link, and connect anew what no longer answers");
  command.add_option("NAME", line.name, "The device")->required()->type_name("");
  AddCommonOptions(command, line);
  command.callback([&line] { line.command = Command::kPing; });
}

void AddWatchCommand(CLI::App& app, CommandLine& line) {
  CLI::App& command = *app.add_subcommand(
      "watch", "Print the devices that are there, or look for one until it is found");
  const auto name = command.add_option("NAME", line.name, "The device to look for")->type_name("");
  command.add_flag("--keep", line.keep, "Watch on until the device is gone again")->needs(name);
  AddCommonOptions(command, line);
  command.callback([&line] { line.command = Command::kWatch; });
}

void AddRunCommand(CLI::App& app, CommandLine& line, std::vector<std::string>& operations) {
  CLI::App& command = *app.add_subcommand("run", "Do several operations one after the other");
  command.add_option("OPERATION", operations, "What to do, see below")->type_name("");
  command.footer(kRunFooter);
  AddCommonOptions(command, line);
  command.callback([&line] { line.command = Command::kRun; });
}

void AddDoctorCommand(CLI::App& app, CommandLine& line) {
  CLI::App& command = *app.add_subcommand(
      "doctor", "Say what this machine lacks for reaching devices, and how to mend it");
  command.callback([&line] { line.command = Command::kDoctor; });
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
  if (line.radio && !ChooseRadio(*line.radio)) {
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
  AddIpCommand(app, line);
  AddPingCommand(app, line);
  AddWatchCommand(app, line);
  std::vector<std::string> operations;
  AddRunCommand(app, line, operations);
  AddDoctorCommand(app, line);
  AddRadioOption(app, line);
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
