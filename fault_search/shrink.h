// Makes a failing story short.
#pragma once

#include "story.h"

namespace lanvoss::search {

// Leaves away one part of the story after the other as long as it still fails.
Story Shrink(Story story, bool free);

}  // namespace lanvoss::search
