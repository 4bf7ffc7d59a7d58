// Says what this machine lacks for reaching devices.
#pragma once

#include <string>
#include <vector>

#include "outcome.h"

namespace lanvoss::program {

struct Finding {
  bool isFine = true;
  std::string what = {};
  std::string remedy = {};  // where something is to be mended
};

// What this system's radio needs. Each kind of system looks for itself.
std::vector<Finding> Examine();

Outcome RunDoctor();

}  // namespace lanvoss::program
