// A part of the time in the picture: an axis and the lanes below it.
#pragma once

#include <cstdint>
#include <string>

#include "timeline/canvas.h"
#include "timeline/time_scale.h"
#include "timeline/timeline.h"

namespace lanvoss::timeline {

// Where a strip lies, in pixels.
inline constexpr double kPictureWidth = 1200;
inline constexpr double kMargin = 24;
inline constexpr double kStripLeft = kMargin + 124;  // right of the names of the lanes
inline constexpr double kStripRight = kPictureWidth - kMargin;

struct Section {
  std::int64_t beginPlace;
  std::int64_t endPlace;
};

// Draws what lies in the section with its upper edge at `top`. Returns where its lower edge is.
double DrawStrip(const Timeline& timeline, const TimeScale& scale, const Section& section,
                 double top, Canvas& canvas);

}  // namespace lanvoss::timeline
