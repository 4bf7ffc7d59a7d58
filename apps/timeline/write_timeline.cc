#include "timeline/write_timeline.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "timeline/timeline.h"

namespace lanvoss::timeline {
namespace {

constexpr char kPictureEnding[] = ".svg";
constexpr char kTraceEnding[] = ".json";

void WriteFile(const std::string& file, const std::string& content, std::ios::openmode mode) {
  std::ofstream stream(file, std::ios::binary | mode);
  stream << content << std::flush;
  if (!stream) {
    throw std::runtime_error(file + ": " + std::generic_category().message(errno));
  }
}

void Write(const Timeline& timeline, const std::string& file) {
  WriteFile(file, file.ends_with(kPictureEnding) ? DrawSvg(timeline) : WriteTraceEvents(timeline),
            std::ios::trunc);
}

}  // namespace

bool IsTimelineFile(const std::string& file) {
  return file.ends_with(kPictureEnding) || file.ends_with(kTraceEnding);
}

void WriteTimeline(const std::vector<Notification>& notifications, const std::string& file) {
  if (notifications.empty()) {
    throw std::runtime_error(file + ": there is nothing to draw");
  }
  Write(BuildTimeline(notifications), file);
}

void WriteTimeline(const log::SavedLog& saved, const std::string& file) {
  Write(BuildTimeline(saved), file);
}

void TryToWrite(const std::string& file) {
  std::error_code unknown;
  const bool wasThere = std::filesystem::exists(file, unknown);
  WriteFile(file, "", std::ios::app);
  if (!wasThere) {
    std::filesystem::remove(file, unknown);
  }
}

}  // namespace lanvoss::timeline
