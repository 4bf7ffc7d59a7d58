#include "backends/wpa/doctor.h"

#include "commands/doctor.h"
#include "wpa_adapter.h"

namespace lanvoss::program {

std::vector<Finding> Examine(const std::string& radioName) {
  return wpa::Examine(WpaInterfaceOf(radioName).value_or(""));
}

}  // namespace lanvoss::program
