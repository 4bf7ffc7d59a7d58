#include "commands/doctor.h"

#include "backends/wpa/doctor.h"
#include "wpa_adapter.h"

namespace lanvoss::program {

std::vector<Finding> Examine(const std::string& radioName) {
  std::vector<Finding> findings;
  for (const wpa::Finding& finding : wpa::Examine(WpaInterfaceOf(radioName).value_or(""))) {
    findings.push_back({finding.isFine, finding.what, finding.remedy});
  }
  return findings;
}

}  // namespace lanvoss::program
