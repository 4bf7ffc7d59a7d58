// What is missing on this machine, and how to mend it.
#pragma once

#include <string>
#include <vector>

namespace lanvoss::wpa {

struct Finding {
  bool isFine = true;
  std::string what;
  std::string remedy = {};  // a command, where something is to be mended
};

// Looks at everything that reaching a device over this adapter needs. `interface` as for the radio.
std::vector<Finding> Examine(const std::string& interface);

}  // namespace lanvoss::wpa
