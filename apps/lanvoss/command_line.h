// The arguments of the program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "operation.h"

namespace lanvoss::program {

enum class Command {
  kIp,
  kPing,
  kKeep,
  kWatch,
  kDisconnect,
  kUnpair,
  kDevices,
  kRun,
  kShell,
  kTimeline,
  kDoctor
};

struct CommandLine {
  Command command = Command::kIp;
  std::string commandName;
  // Neither empty nor with a line feed; always there where a command takes one, but for kWatch.
  std::optional<std::string> name;
  std::optional<std::int32_t> gapMs;        // of kIp
  bool direct = false;                      // of kIp
  bool keep = false;                        // of kWatch
  int everyS = 10;                          // of kKeep
  std::vector<Operation> operations;        // of kRun; none: they stand on standard input
  std::string directory;                    // empty: the current one
  std::optional<std::string> radio;         // its name; none: the system's default
  std::optional<std::string> scenarioFile;  // a simulated neighbourhood instead
  bool json = false;                        // an object a line, instead of the log and the results
  bool quiet = false;                       // the result alone
  std::optional<std::string> logFile;       // where the log goes instead
  std::optional<std::string> timelineFile;  // where a picture of what happened goes
  std::string savedLog;                     // of kTimeline; "-": standard input
};

// Fills `line`. A number: the program is to end with this exit code, and what there is to say (the
// help, the version, what is wrong) has been written.
std::optional<int> ParseCommandLine(int argc, char** argv, CommandLine& line);

}  // namespace lanvoss::program
