// The host program: one command of the library per run.
#include "command_line.h"
#include "session.h"
#include "system.h"

// An error that cannot even be reported may end the program.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
  using namespace lanvoss::program;
  PrepareStreams();
  CommandLine line;
  if (const auto exitCode = ParseCommandLine(argc, argv, line)) {
    return *exitCode;
  }
  return Session(line).Run();
}
