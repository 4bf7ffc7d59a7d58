// How each activity looks.
#pragma once

#include "timeline/timeline.h"

namespace lanvoss::program {

struct Look {
  const char* style;  // the class of the style sheet that gives it its colour
  const char* name;   // in the legend
};

Look LookOf(Activity activity);

}  // namespace lanvoss::program
