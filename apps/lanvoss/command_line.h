// The arguments of the program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "commands/operations.h"

namespace CLI {
class App;
}

namespace lanvoss::program {

struct Command;

struct CommandLine {
  const Command* command = nullptr;
  // Neither empty nor with a line feed; always there where a command takes one, but for `watch`.
  std::optional<std::string> name;
  std::optional<std::int32_t> gapMs;        // of `ip`
  bool direct = false;                      // of `ip`
  bool keep = false;                        // of `watch`
  int everyS = 10;                          // of `keep`
  std::vector<Operation> operations;        // of `run`; none: they come on standard input
  std::string directory;                    // empty: the current one
  std::optional<std::string> radio;         // its name; none: the system's default
  std::optional<std::string> scenarioFile;  // a simulated neighbourhood instead
  bool json = false;                        // an object a line, instead of the log and the results
  bool quiet = false;                       // the result alone
  std::optional<std::string> logFile;       // where the log goes instead
  std::optional<std::string> timelineFile;  // where a picture of what happened goes
  std::string savedLog;                     // of `timeline`; "-": standard input
};

// Fills `line`. A number: the program is to end with this exit code, and what there is to say (the
// help, the version, what is wrong) has been written.
std::optional<int> ParseCommandLine(int argc, char** argv, CommandLine& line);

// The option of commands that are about one device.
void AddNameOption(CLI::App& command, CommandLine& line);

}  // namespace lanvoss::program
