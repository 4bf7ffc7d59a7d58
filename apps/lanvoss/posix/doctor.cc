#include "commands/doctor.h"

#include "backends/wpa/doctor.h"
#include "chosen_adapter.h"

namespace lanvoss::program {

std::vector<Finding> Examine() {
  std::vector<Finding> findings;
  for (const wpa::Finding& finding : wpa::Examine(ChosenAdapter().value_or(""))) {
    findings.push_back({finding.isFine, finding.what, finding.remedy});
  }
  return findings;
}

}  // namespace lanvoss::program
