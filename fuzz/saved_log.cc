// Any bytes as a saved log: the picture is well-formed XML, the trace is JSON, and no two spans of
// a row overlap.
#include "log/saved_log.h"

#include <cstddef>
#include <cstdint>
#include <expat.h>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "require.h"
#include "timeline/timeline.h"
#include "timeline/write_timeline.h"

namespace {

using lanvoss::timeline::Span;
using lanvoss::timeline::Timeline;

bool IsXml(const std::string& text) {
  XML_Parser parser = XML_ParserCreate("UTF-8");
  const auto status = XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1);
  XML_ParserFree(parser);
  return status == XML_STATUS_OK;
}

void CheckTimeline(const Timeline& timeline) {
  std::map<std::pair<std::size_t, std::size_t>, std::int64_t> ends;
  for (const Span& span : timeline.spans) {
    Require(span.beginUs >= 0 && span.beginUs <= span.endUs, "a span has a length");
    Require(span.row < timeline.lanes.at(span.lane).rows, "a lane has its rows");
    auto& end = ends[{span.lane, span.row}];
    Require(span.beginUs >= end, "the spans of a row do not overlap");
    end = span.endUs;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  try {
    const lanvoss::log::SavedLog saved = lanvoss::log::ReadSavedLog(text);
    Require(saved.notifications.size() + saved.unclear <= saved.lines, "a line counts once");
    const Timeline timeline = lanvoss::timeline::BuildTimeline(saved);
    CheckTimeline(timeline);
    Require(IsXml(DrawSvg(timeline)), "the picture is well-formed");
    Require(nlohmann::json::accept(WriteTraceEvents(timeline)), "the trace is JSON");
  } catch (const std::runtime_error& refusal) {
    Require(!std::string_view(refusal.what()).empty(), "a refusal says why");
  }
  return 0;
}
