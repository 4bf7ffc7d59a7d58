#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

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
      .AddText("fix", finding.isFine ? "" : finding.remedy);
}

// The state of the machine in a sentence.
std::string Summary(const std::vector<Finding>& findings) {
  const auto missing = std::ranges::count_if(findings, IsMissing);
  const auto doubtful = std::ranges::count_if(findings, std::logical_not(), &Finding::isFine);
  if (std::ranges::any_of(findings, &Finding::meansNoAdapter)) {
    return "This machine has no Wi-Fi adapter that supports Wi-Fi Direct.";
  }
  if (missing > 0) {
    return "This machine is not ready for Wi-Fi Direct: " + std::to_string(missing) + " of " +
           std::to_string(findings.size()) + " things are missing.";
  }
  return doubtful > 0
             ? "This machine is ready for Wi-Fi Direct, unless what is marked \"check\" hinders."
             : "This machine is ready for Wi-Fi Direct.";
}

bool UsesSimulatedRadio(const CommandLine& line) {
  return line.scenarioFile.has_value() || line.radio == kSimulatedRadio;
}

Outcome OutcomeOfSimulatedRadio() {
  const std::string summary = "The simulated radio is ready: it needs nothing of this machine.";
  return {.result = summary + "\n",
          .facts = JsonObject().AddText("summary", summary).AddObjects("findings", {})};
}

}  // namespace

Outcome RunDoctor(Session& session) {
  if (UsesSimulatedRadio(session.Line())) {
    return OutcomeOfSimulatedRadio();
  }
  const std::vector<Finding> findings = Examine(session.Line().radio);
  const std::string summary = Summary(findings);
  Outcome outcome{.result = summary + "\n"};
  outcome.facts.AddText("summary", summary);
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
