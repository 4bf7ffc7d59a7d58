#include <algorithm>

#include "commands/table.h"
#include "radio.h"

namespace lanvoss::program {

using platform::Finding;

Outcome RunDoctor(Session& session) {
  const std::vector<Finding> findings = Examine(session.Line().radio);
  Outcome outcome;
  for (const Finding& finding : findings) {
    outcome.result += (finding.isFine ? "ok       " : "missing  ") + finding.what + "\n";
    if (!finding.isFine) {
      outcome.result += "         fix: " + finding.remedy + "\n";
    }
  }
  const auto missing = std::ranges::count(findings, false, &Finding::isFine);
  if (missing > 0) {
    outcome.exitCode = kExitPlatform;
    outcome.complaint =
        std::to_string(missing) + " of " + std::to_string(findings.size()) + " things are missing";
  }
  return outcome;
}

}  // namespace lanvoss::program
