#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "timeline/write_timeline.h"

namespace lanvoss::timeline {
namespace {

using nlohmann::json;

constexpr int kProcess = 1;
constexpr int kLogTrack = 0;

// A viewer nests the events of a track, so each track of a lane becomes a track there.
class Tracks {
 public:
  Tracks(const Timeline& timeline, json& events) : timeline_(timeline), events_(events) {
    Name(kLogTrack, "log");
  }

  int Of(const Span& span) {
    const auto [place, isNew] =
        numbers_.try_emplace({span.lane, span.track}, static_cast<int>(numbers_.size()) + 1);
    if (isNew) {
      const std::string& lane = timeline_.lanes[span.lane].label;
      Name(place->second,
           span.track == 0 ? lane : lane + " (" + std::to_string(span.track + 1) + ")");
    }
    return place->second;
  }

 private:
  void Name(int track, const std::string& name) {
    events_.push_back({{"ph", "M"},
                       {"name", "thread_name"},
                       {"pid", kProcess},
                       {"tid", track},
                       {"args", {{"name", name}}}});
    events_.push_back({{"ph", "M"},
                       {"name", "thread_sort_index"},
                       {"pid", kProcess},
                       {"tid", track},
                       {"args", {{"sort_index", track}}}});
  }

  const Timeline& timeline_;
  json& events_;
  std::map<std::pair<std::size_t, std::size_t>, int> numbers_;
};

json TraceOf(const Span& span, int track) {
  constexpr const char* kEndings[] = {"", "good", "bad", "not finished"};
  return {{"ph", "X"},
          {"name", span.label},
          {"cat", LookOf(span.activity).name},
          {"ts", span.beginUs},
          {"dur", span.endUs - span.beginUs},
          {"pid", kProcess},
          {"tid", track},
          {"args", {{"thread", span.thread}, {"ending", kEndings[static_cast<int>(span.ending)]}}}};
}

json TraceOf(const Event& event) {
  return {{"ph", "i"},           {"s", "t"},
          {"name", event.words}, {"cat", event.kind},
          {"ts", event.timeUs},  {"pid", kProcess},
          {"tid", kLogTrack},    {"args", {{"thread", event.thread}, {"message", event.message}}}};
}

}  // namespace

std::string WriteTraceEvents(const Timeline& timeline) {
  json events = json::array();
  Tracks tracks(timeline, events);
  for (const Span& span : timeline.spans) {
    const int track = tracks.Of(span);
    events.push_back(TraceOf(span, track));
  }
  for (const Event& event : timeline.events) {
    events.push_back(TraceOf(event));
  }
  const json document = {
      {"displayTimeUnit", "ms"},
      {"otherData", {{"headline", timeline.headline}, {"reading", timeline.reading}}},
      {"traceEvents", std::move(events)}};
  // Invalid UTF-8 becomes U+FFFD.
  return document.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
}

}  // namespace lanvoss::timeline
