// The timeline as a picture that stands by itself: for a browser, a document, a bug report.
#pragma once

#include <string>

#include "timeline/timeline.h"

namespace lanvoss::program {

std::string DrawSvg(const Timeline& timeline);

}  // namespace lanvoss::program
