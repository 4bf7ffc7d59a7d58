#include "commands/link.h"
#include "commands/table.h"

namespace lanvoss::program {

// Never pairs or connects: no link is a success.
Outcome RunDisconnect(Session& session) {
  const std::string& name = *session.Line().name;
  const lanvoss::Outcome outcome = session.Library().Disconnect();
  if (!outcome) {
    return ToOutcome(name, outcome);
  }
  return {.result = "there is no link to " + name + "\n", .facts = AttemptFacts(name, outcome)};
}

}  // namespace lanvoss::program
