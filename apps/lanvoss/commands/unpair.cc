#include <chrono>

#include "commands/table.h"
#include "commands/watch.h"

namespace lanvoss::program {
namespace {

// The system does not say when it has done it. It needs the program for less time than this.
constexpr std::chrono::seconds kUnpairTime(3);

}  // namespace

// Only a device that the watcher reports can be unpaired.
Outcome RunUnpair(Session& session) {
  const std::string& name = *session.Line().name;
  if (!Watch(session, WatchRequest(name, false))) {
    return NoWatch(session);
  }
  const JsonObject facts = JsonObject().AddText("name", name);
  if (!session.Status().isFound) {
    return {kExitNotFound, {}, name + " was not found", facts};
  }
  session.Object().Unpair(name);
  session.SleepUnlessStopped(kUnpairTime);
  return {.result = "asked the system to remove the pairing with " + name + "\n", .facts = facts};
}

}  // namespace lanvoss::program
