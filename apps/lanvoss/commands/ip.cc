#include <CLI/CLI.hpp>
#include <limits>

#include "commands/link.h"
#include "commands/table.h"

namespace lanvoss::program {

void AddIpOptions(CLI::App& command, CommandLine& line) {
  AddNameOption(command, line);
  AddTimeoutOption(command, line);
  const auto gap =
      command
          .add_option("--gap", line.gapMs,
                      "Wait until the last disconnect is at least MS milliseconds ago")
          ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()).description(""))
          ->type_name("MS");
  command.add_flag("--direct", line.direct, "Connect at once, with the id in the cache for NAME")
      ->excludes(gap);
}

Outcome RunIp(Session& session) {
  const CommandLine& line = session.Line();
  return ToOutcome(*line.name, session.Library().Connect(*line.name, ConnectOptionsOf(line)));
}

}  // namespace lanvoss::program
