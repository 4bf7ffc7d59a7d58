#include "timeline/write_timeline.h"

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "timeline/timeline.h"
#include "timeline/write_timeline.h"

namespace lanvoss::timeline {
namespace {

constexpr char kPictureEnding[] = ".svg";
constexpr char kTraceEnding[] = ".json";

void WriteFile(const std::string& file, const std::string& content) {
  std::ofstream stream(file, std::ios::binary);
  stream << content << std::flush;
  if (!stream) {
    throw std::runtime_error(file + ": " + std::generic_category().message(errno));
  }
}

}  // namespace

bool IsTimelineFile(const std::string& file) {
  return file.ends_with(kPictureEnding) || file.ends_with(kTraceEnding);
}

void WriteTimeline(const std::vector<Notification>& notifications, const std::string& file) {
  if (notifications.empty()) {
    throw std::runtime_error(file + ": there is nothing to draw");
  }
  const Timeline timeline = BuildTimeline(notifications);
  WriteFile(file, file.ends_with(kPictureEnding) ? DrawSvg(timeline) : WriteTraceEvents(timeline));
}

}  // namespace lanvoss::timeline
