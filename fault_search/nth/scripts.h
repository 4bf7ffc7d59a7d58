// What a host does with its object, from beginning to end.
#pragma once

#include <span>

#include "nth_run.h"

namespace lanvoss::nth {

struct NamedStory {
  const char* name;
  NthRun::Script play;
};

std::span<const NamedStory> Scripts();

}  // namespace lanvoss::nth
