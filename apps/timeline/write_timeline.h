// Writes a timeline into a file.
#pragma once

#include <string>
#include <vector>

#include "timeline/timeline.h"

namespace lanvoss::timeline {

// A complete picture: for a browser, a document, a bug report.
std::string DrawSvg(const Timeline& timeline);

// The trace-event format of browsers' trace viewers.
std::string WriteTraceEvents(const Timeline& timeline);

// Whether WriteTimeline knows what to write into a file of this name: .svg is a picture, .json a
// trace.
bool IsTimelineFile(const std::string& file);

// Throws a std::runtime_error, which names the file, when there are no notifications or when the
// file cannot be written. IsTimelineFile must be true for the file.
void WriteTimeline(const std::vector<Notification>& notifications, const std::string& file);
void WriteTimeline(const log::SavedLog& saved, const std::string& file);

// Throws a std::runtime_error, which names the file, when WriteTimeline cannot write it. A file
// that was there stays as it was, and no other is left.
void TryToWrite(const std::string& file);

}  // namespace lanvoss::timeline
