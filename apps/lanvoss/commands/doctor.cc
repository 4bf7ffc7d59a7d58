#include "commands/doctor.h"

#include <algorithm>

namespace lanvoss::program {

Outcome RunDoctor(const CommandLine& line) {
  const std::vector<Finding> findings = Examine(line.radio.value_or(""));
  Outcome outcome;
  for (const Finding& finding : findings) {
    outcome.result += (finding.isFine ? "fine     " : "missing  ") + finding.what + "\n";
    if (!finding.isFine) {
      outcome.result += "         mend it with: " + finding.remedy + "\n";
    }
  }
  const auto missing = std::count_if(findings.begin(), findings.end(),
                                     [](const Finding& finding) { return !finding.isFine; });
  if (missing > 0) {
    outcome.exitCode = kExitPlatform;
    outcome.complaint =
        std::to_string(missing) + " of " + std::to_string(findings.size()) + " things are missing";
  }
  return outcome;
}

}  // namespace lanvoss::program
