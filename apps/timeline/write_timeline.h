// Into a file goes what happened when.
#pragma once

#include <string>
#include <vector>

#include "timeline/timeline.h"

namespace lanvoss::timeline {

// A picture that stands by itself: for a browser, a document, a bug report.
std::string DrawSvg(const Timeline& timeline);

// The trace-event format that the trace viewers of browsers open.
std::string WriteTraceEvents(const Timeline& timeline);

// Whether WriteTimeline knows what to write into a file of this name: .svg is a picture, .json a
// trace.
bool IsTimelineFile(const std::string& file);

// Writes what the notifications tell into the file. Throws a std::runtime_error, which names the
// file, when there is nothing to tell or when it cannot be written. IsTimelineFile must hold.
void WriteTimeline(const std::vector<Notification>& notifications, const std::string& file);

}  // namespace lanvoss::timeline
