#include <string>

#include "commands/link.h"
#include "commands/table.h"

namespace lanvoss::program {
namespace {

// The result of a check after which there is a link.
std::string FindingText(const LinkCheck& check, const std::string& name) {
  if (!check.replies) {
    return name + " was not probed: its link had no remote address";
  }
  if (*check.replies > 0) {
    return name + " answered, replies: " + std::to_string(*check.replies);
  }
  return name + " did not answer; " + (check.recovery ? "paired and " : "") + "connected again";
}

JsonObject CheckFacts(const LinkCheck& check, const std::string& name,
                      const std::string& addresses) {
  JsonObject facts = LinkFacts(name, addresses);
  if (check.replies) {
    facts.AddNumber("replies", *check.replies);
  }
  return facts.AddFlag("recovery", check.recovery);
}

}  // namespace

// Connects, checks the link and asks for its addresses again, as a host has to do it: the check
// may leave the device paired but not connected.
Outcome RunPing(Session& session) {
  const std::string& name = *session.Line().name;
  {
    const OperationScope scope(session);
    if (session.Object().GetDeviceIp(name).empty()) {
      return ExplainNoLink(session, name);
    }
  }
  const LinkCheck check = CheckLink(session);
  const std::string addresses = AskForAddresses(session, name);
  if (addresses.empty()) {
    return {.exitCode = kExitDeadLink,
            .complaint = "dead link: " + name + " could not be connected again",
            .facts = JsonObject().AddText("name", name)};
  }
  return {.result = FindingText(check, name) + "\n" + addresses + "\n",
          .facts = CheckFacts(check, name, addresses)};
}

}  // namespace lanvoss::program
