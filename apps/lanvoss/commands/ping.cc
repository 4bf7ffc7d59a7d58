#include "commands/ping.h"

#include <string>

#include "commands/addresses.h"
#include "commands/link_check.h"
#include "commands/no_link.h"
#include "situation.h"

namespace lanvoss::program {
namespace {

// What the check came to, given that there is a link after it.
std::string FindingText(const LinkCheck& check, const std::string& name) {
  if (!check.replies) {
    return name + " was not probed: its link had no remote address";
  }
  if (*check.replies > 0) {
    return name + " answered, replies: " + std::to_string(*check.replies);
  }
  return name + " did not answer; " + (check.recovery ? "paired and " : "") + "connected anew";
}

Facts CheckFacts(const LinkCheck& check, const std::string& name, const std::string& addresses) {
  Facts facts = LinkFacts(name, addresses);
  if (check.replies) {
    facts.AddNumber("replies", *check.replies);
  }
  return facts.AddFlag("recovery", check.recovery);
}

}  // namespace

Outcome RunPing(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted) {
  const std::string& name = *line.name;
  {
    const UnderWay underWay;
    if (object.GetDeviceIp(name).empty()) {
      return NoLink(name);
    }
  }
  const LinkCheck check = CheckLink(object);
  const std::string addresses = AskForAddresses(object, name, interrupted);
  if (addresses.empty()) {
    return {.exitCode = kExitDeadLink,
            .complaint = "dead link: " + name + " could not be connected anew",
            .facts = Facts().AddText("name", name)};
  }
  return {.result = FindingText(check, name) + "\n" + addresses + "\n",
          .facts = CheckFacts(check, name, addresses)};
}

}  // namespace lanvoss::program
