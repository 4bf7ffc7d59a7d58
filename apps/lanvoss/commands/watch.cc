#include <CLI/CLI.hpp>
#include <vector>

#include "commands/link.h"
#include "commands/table.h"

namespace lanvoss::program {
namespace {

std::string LinesOf(const std::vector<std::string>& names) {
  std::string lines;
  for (const std::string& name : names) {
    lines += name + "\n";
  }
  return lines;
}

}  // namespace

void AddWatchOptions(CLI::App& command, CommandLine& line) {
  const auto name = command.add_option("NAME", line.name, "The device to look for")->type_name("");
  AddTimeoutOption(command, line);
  command.add_flag("--keep", line.keep, "Continue until the device is gone again")->needs(name);
}

Outcome RunWatch(Session& session) {
  const CommandLine& line = session.Line();
  const std::string name = line.name.value_or("");
  const lanvoss::Outcome outcome = session.Library().Search(
      name, SearchTimeoutOf(line), line.keep ? SearchUntil::kGone : SearchUntil::kFound);
  if (!outcome) {
    return ToOutcome(name, outcome);
  }
  return {.result = line.name ? name + "\n" : LinesOf(outcome.inRange),
          .facts = JsonObject().AddTexts("devices", outcome.inRange)};
}

}  // namespace lanvoss::program
