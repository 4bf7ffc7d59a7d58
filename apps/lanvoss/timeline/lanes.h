// Who did what: the lanes of a timeline.
#pragma once

#include "timeline/timeline.h"

namespace lanvoss::program {

// Whatever its threads are.
bool HasItsOwnLane(Part part);

// Sorts the spans and gives them and the marks their places. Where the threads are known each has a
// lane, else each part of the work; the watcher and the link have their own in any case.
void AssignLanes(Timeline& timeline);

}  // namespace lanvoss::program
