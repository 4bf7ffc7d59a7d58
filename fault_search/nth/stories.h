// What a host does with its object, from beginning to end.
#pragma once

#include <span>

#include "world.h"

namespace lanvoss::nth {

struct NamedStory {
  const char* name;
  World::Story play;
};

std::span<const NamedStory> Stories();

}  // namespace lanvoss::nth
