// The timeline in the trace-event format that the trace viewers of browsers open.
#pragma once

#include <string>

#include "timeline/timeline.h"

namespace lanvoss::program {

std::string WriteTraceEvents(const Timeline& timeline);

}  // namespace lanvoss::program
