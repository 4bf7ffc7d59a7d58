// What a host does with its object, from beginning to end.
#pragma once

#include <span>

#include "nth_run.h"

namespace lanvoss::nth {

struct NamedScript {
  const char* name;
  NthRun::Script play;
};

std::span<const NamedScript> Scripts();

}  // namespace lanvoss::nth
