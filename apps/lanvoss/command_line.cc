#include "command_line.h"

#include <CLI/CLI.hpp>
#include <limits>

#include "console.h"
#include "outcome.h"

namespace lanvoss::program {
namespace {

constexpr char kFooter[] =
    "The log and then the result go to standard output, complaints to standard error.\n"
    "\n"
    "Exit codes:\n"
    "  0    done\n"
    "  1    no link came up, or the device was not found\n"
    "  2    bad usage, or a bad scenario file\n"
    "  3    the platform failed\n"
    "  130  interrupted; a second Ctrl-C leaves at once\n";

void AddCommonOptions(CLI::App& command, CommandLine& line) {
  command
      .add_option("--dir", line.directory,
                  "Where the device cache lives (default: the current directory)")
      ->type_name("DIR");
  command
      .add_option("--scenario", line.scenarioFile,
                  "JSON file with the simulated neighbourhood (default: a built-in one)")
      ->type_name("FILE");
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

void AddWatchCommand(CLI::App& app, CommandLine& line) {
  CLI::App& command = *app.add_subcommand(
      "watch", "Print the devices that are there, or look for one until it is found");
  const auto name = command.add_option("NAME", line.name, "The device to look for")->type_name("");
  command.add_flag("--keep", line.keep, "Watch on until the device is gone again")->needs(name);
  AddCommonOptions(command, line);
  command.callback([&line] { line.command = Command::kWatch; });
}

// A line feed parts the fields of a request, so no name can have one.
std::string FaultOf(const CommandLine& line) {
  if (line.name && line.name->empty()) {
    return "NAME is empty";
  }
  if (line.name && line.name->find('\n') != std::string::npos) {
    return "NAME has a line feed in it";
  }
  return {};
}

}  // namespace

std::optional<int> ParseCommandLine(int argc, char** argv, CommandLine& line) {
  CLI::App app("Reaches a named device over Wi-Fi Direct, here on a simulated radio.", "lanvoss");
  app.require_subcommand(1);
  app.set_version_flag("--version", "lanvoss " LANVOSS_VERSION);
  app.footer(kFooter);
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return "lanvoss: " + std::string(error.what()) + "\nRun with --help for more information.\n";
  });
  AddIpCommand(app, line);
  AddWatchCommand(app, line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOk : kExitUsage;
  }
  if (const std::string fault = FaultOf(line); !fault.empty()) {
    Complain(fault);
    return kExitUsage;
  }
  return std::nullopt;
}

}  // namespace lanvoss::program
