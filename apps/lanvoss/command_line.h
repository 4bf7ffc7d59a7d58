// The arguments of the program.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lanvoss/client.h"

#include "commands/operations.h"

namespace CLI {
class App;
}

namespace lanvoss::program {

struct Command;

struct CommandLine {
  const Command* command = nullptr;
  const Command* subcommand = nullptr;  // of `scenario`
  // Not empty, and without a line feed. Commands with a NAME always have one, except `watch`.
  std::optional<std::string> name;
  std::optional<std::int32_t> gapMs;        // of `ip`
  bool direct = false;                      // of `ip`
  bool keep = false;                        // of `watch`
  bool once = false;                        // of `keep`
  bool recover = false;                     // of `ping`
  std::optional<int> timeoutS;              // of an operation; none: its own
  int everyS = 10;                          // of `keep`
  std::vector<Operation> operations;        // of `run`; none: read from standard input
  std::optional<std::string> directory;     // of the device cache
  std::optional<std::string> radio;         // its name; none: the system's default
  std::optional<std::string> scenarioFile;  // simulated devices instead of a radio
  bool json = false;                   // an object per line, instead of the log and the results
  bool quiet = false;                  // only the result
  bool verbose = false;                // the log too
  std::optional<std::string> logFile;  // where the log goes instead
  std::optional<std::string> timelineFile;  // where a picture of what happened goes
  std::string savedLog;                     // of `timeline`; "-": standard input
  std::vector<std::string> packedLogs;      // of `report`
  std::string reportFile = "lanvoss-report.zip";
};

// Fills `line`. A number: the program must end with this exit code; the help, the version or the
// error message has been written.
std::optional<int> ParseCommandLine(int argc, char** argv, CommandLine& line);

// Adds a command below `parent`, which takes the options of every command too.
CLI::App& AddCommand(CLI::App& parent, const Command& command, CommandLine& line);

// The option of commands for one device.
void AddNameOption(CLI::App& command, CommandLine& line);

// The option of commands that wait for a device.
void AddTimeoutOption(CLI::App& command, CommandLine& line);

ConnectOptions ConnectOptionsOf(const CommandLine& line);
std::chrono::milliseconds SearchTimeoutOf(const CommandLine& line);

}  // namespace lanvoss::program
