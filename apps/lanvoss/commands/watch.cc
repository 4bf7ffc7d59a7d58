#include "commands/watch.h"

#include <vector>

#include "request.h"
#include "situation.h"

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

bool Watch(LanvossInterface& object, const std::string& request,
           const std::stop_token& interrupted) {
  const UnderWay underWay;
  const bool isRunning = object.StartWatch(request) == 0;
  if (isRunning) {
    WaitForWatch(interrupted);
  }
  return isRunning;
}

Outcome RunWatch(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted) {
  if (!Watch(object, WatchRequest(line.name.value_or(""), line.keep), interrupted)) {
    return NoWatch();
  }
  const std::vector<std::string> names = ReportedNames();
  const Facts facts = Facts().AddTexts("devices", names);
  if (!line.name) {
    return {.result = LinesOf(names), .facts = facts};
  }
  if (!TheSituation().isFound) {
    return {kExitNotFound, {}, *line.name + " was not found", facts};
  }
  return {.result = *line.name + "\n", .facts = facts};
}

Outcome NoWatch() {
  return {.exitCode = kExitPlatform,
          .complaint = "the platform did not start its device watcher: " + TheSituation().error};
}

}  // namespace lanvoss::program
