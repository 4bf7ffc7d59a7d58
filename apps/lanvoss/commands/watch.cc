#include "commands/watch.h"

#include <CLI/CLI.hpp>
#include <vector>

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

bool Watch(Session& session, const std::string& request) {
  const OperationScope scope(session);
  const bool isRunning = session.Object().StartWatch(request) == 0;
  if (isRunning) {
    session.WaitForWatch();
  }
  return isRunning;
}

Outcome NoWatch(const Session& session) {
  return {.exitCode = kExitPlatform,
          .complaint = "the platform did not start its device watcher: " + session.Status().error};
}

void AddWatchOptions(CLI::App& command, CommandLine& line) {
  const auto name = command.add_option("NAME", line.name, "The device to look for")->type_name("");
  command.add_flag("--keep", line.keep, "Continue until the device is gone again")->needs(name);
}

Outcome RunWatch(Session& session) {
  const CommandLine& line = session.Line();
  if (!Watch(session, WatchRequest(line.name.value_or(""), line.keep))) {
    return NoWatch(session);
  }
  const std::vector<std::string> names = session.ReportedNames();
  const JsonObject facts = JsonObject().AddTexts("devices", names);
  if (!line.name) {
    return {.result = LinesOf(names), .facts = facts};
  }
  if (!session.Status().isFound) {
    return {kExitNotFound, {}, *line.name + " was not found", facts};
  }
  return {.result = *line.name + "\n", .facts = facts};
}

}  // namespace lanvoss::program
