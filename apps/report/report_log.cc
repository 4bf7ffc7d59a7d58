#include "report/report_log.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "timeline/duration.h"
#include "timeline/write_timeline.h"

namespace lanvoss::report {
namespace {

// "2026-11-23T07:52:45.123456"
std::string StampOf(std::int64_t timeUs) {
  constexpr std::size_t kBetween = 10;  // the place between the date and the time
  std::string stamp = timeline::ClockText(timeUs);
  stamp[kBetween] = 'T';
  std::array<char, 8> rest{};
  std::snprintf(
      rest.data(), rest.size(), "%03d",
      static_cast<int>((timeUs % timeline::kUsPerMs + timeline::kUsPerMs) % timeline::kUsPerMs));
  return stamp + rest.data();
}

std::string LineOf(const log::Notification& notification) {
  using nlohmann::ordered_json;
  constexpr int kOneLine = -1;
  const bool isPlain = notification.thread == 0 && notification.kind == "info" &&
                       notification.message.find('\n') == std::string::npos;
  if (isPlain) {
    return "[" + timeline::ClockText(notification.timeUs) + "] " + notification.message + "\n";
  }
  const ordered_json object = {{"time", StampOf(notification.timeUs)},
                               {"thread", notification.thread},
                               {"kind", notification.kind},
                               {"message", notification.message}};
  return object.dump(kOneLine, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string LogText(const std::vector<log::Notification>& notifications) {
  std::string text;
  for (const log::Notification& notification : notifications) {
    text += LineOf(notification);
  }
  return text;
}

std::string Picture(const std::vector<log::Notification>& notifications) {
  return timeline::DrawSvg(timeline::BuildTimeline(notifications));
}

}  // namespace lanvoss::report
