#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "backends/simulated/scenario_file/scenario_file.h"
#include "commands/table.h"
#include "scenario_folder.h"

namespace lanvoss::program {
namespace {

Outcome RunList(Session& session);

// What can be done with scenario files.
constexpr Command kScenarioCommands[] = {
    {"list", "Show the scenarios that come with the program", AddNoOptions, RunList,
     Over::kNothing},
};

Outcome RunList(Session& /*session*/) {
  const std::vector<KnownScenario> scenarios = ScenariosOfProgram();
  if (scenarios.empty()) {
    return {kExitUsage, {}, "the folder with the scenarios of this program is not there"};
  }
  std::size_t width = 0;
  for (const KnownScenario& scenario : scenarios) {
    width = std::max(width, scenario.name.size());
  }
  std::string table;
  std::vector<JsonObject> facts;
  for (const KnownScenario& scenario : scenarios) {
    const std::string comment = simulated::LoadScenario(scenario.file).comment;
    table += scenario.name + std::string(width - scenario.name.size() + 2, ' ') + comment + "\n";
    facts.push_back(JsonObject()
                        .AddText("name", scenario.name)
                        .AddText("file", scenario.file)
                        .AddText("comment", comment));
  }
  return {.result = table, .facts = JsonObject().AddObjects("scenarios", facts)};
}

}  // namespace

void AddScenarioOptions(CLI::App& command, CommandLine& line) {
  command.require_subcommand(1);
  for (const Command& each : kScenarioCommands) {
    CLI::App& added = AddCommand(command, each, line);
    added.callback([&line, &each] { line.subcommand = &each; });
  }
}

Outcome RunScenario(Session& session) { return session.Line().subcommand->run(session); }

}  // namespace lanvoss::program
