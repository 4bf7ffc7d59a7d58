#include "commands/unpair.h"

#include <chrono>

#include "commands/watch.h"
#include "pause.h"
#include "request.h"
#include "situation.h"

namespace lanvoss::program {
namespace {

// Nobody tells when the system has done it; it needs the program for less time than this.
constexpr std::chrono::seconds kUnpairTime(3);

}  // namespace

Outcome RunUnpair(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted) {
  const std::string& name = *line.name;
  if (!Watch(object, WatchRequest(name, false), interrupted)) {
    return NoWatch();
  }
  const Facts facts = Facts().AddText("name", name);
  if (!TheSituation().isFound) {
    return {kExitNotFound, {}, name + " was not found", facts};
  }
  object.Unpair(name);
  Pause(kUnpairTime, interrupted);
  return {.result = "the system was asked to forget " + name + "\n", .facts = facts};
}

}  // namespace lanvoss::program
