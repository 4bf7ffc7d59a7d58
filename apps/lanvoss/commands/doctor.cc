#include <algorithm>

#include "commands/table.h"
#include "radio.h"

namespace lanvoss::program {
namespace {

using platform::Finding;

bool IsMissing(const Finding& finding) { return !finding.isFine && finding.isCertain; }

const char* WordFor(const Finding& finding) {
  return finding.isFine ? "ok" : finding.isCertain ? "missing" : "check";
}

std::string LineFor(const Finding& finding) {
  constexpr std::size_t kColumn = 9;
  std::string line = WordFor(finding);
  line.resize(kColumn, ' ');
  line += finding.what + "\n";
  return finding.isFine ? line : line + std::string(kColumn, ' ') + "fix: " + finding.remedy + "\n";
}

JsonObject FactsOf(const Finding& finding) {
  return JsonObject()
      .AddText("state", WordFor(finding))
      .AddText("what", finding.what)
      .AddText("fix", finding.remedy);
}

}  // namespace

Outcome RunDoctor(Session& session) {
  const std::vector<Finding> findings = Examine(session.Line().radio);
  Outcome outcome;
  std::vector<JsonObject> facts;
  for (const Finding& finding : findings) {
    outcome.result += LineFor(finding);
    facts.push_back(FactsOf(finding));
  }
  outcome.facts.AddObjects("findings", facts);
  const auto missing = std::ranges::count_if(findings, IsMissing);
  if (missing > 0) {
    outcome.exitCode = kExitPlatform;
    outcome.complaint =
        std::to_string(missing) + " of " + std::to_string(findings.size()) + " things are missing";
  }
  return outcome;
}

}  // namespace lanvoss::program
