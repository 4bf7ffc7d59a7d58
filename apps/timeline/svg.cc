#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "timeline/canvas.h"
#include "timeline/duration.h"
#include "timeline/strip.h"
#include "timeline/time_scale.h"
#include "timeline/write_timeline.h"

namespace lanvoss::timeline {
namespace {

// A strip of this length is easy to read. With more than kMostStrips strips they get longer, up to
// kLongestStripUs; then the beginning is left out. So it is with more than kMostDrawn
// notifications.
constexpr std::int64_t kComfortableStripUs = 15 * kUsPerSecond;
constexpr std::int64_t kMostStrips = 4;
constexpr std::int64_t kLongestStripUs = 45 * kUsPerSecond;
constexpr std::size_t kMostDrawn = 2'000;
constexpr std::size_t kMostListed = 240;

// The picture continues a little after the last line, so that a span that begins there is visible.
constexpr std::int64_t kTailShare = 16;

// A log whose stamps have no dates begins in the first days of 1970.
constexpr std::int64_t kFirstDateUs = 31'536'000 * kUsPerSecond;

constexpr double kBoldShare = 1.08;  // of the width of a text

// In pixels.
constexpr double kHeadlineBaseline = 40;
constexpr double kLineHeight = 17;
constexpr double kLegendBox = 11;
constexpr double kLegendGap = 16;
constexpr double kStripGap = 16;
constexpr double kColumnGap = 24;
constexpr double kClockWidth = 82;
constexpr double kOffsetWidth = 76;
constexpr double kThreadWidth = 24;

// The activities and "bad" differ for every eye: the smallest colour difference (CIEDE2000) of two
// of them is 12.8, also as people see them who lack one kind of cones (protanopia, deuteranopia,
// tritanopia). So they differ in brightness as much as in hue. They are the same on light and on
// dark paper, and the text on each has a contrast of 4.5 or more. The outline of a label keeps the
// lines of the grid away from it.
constexpr char kStyle[] = R"(<style>
text{font-family:system-ui,-apple-system,"Segoe UI",Roboto,"DejaVu Sans",sans-serif;font-size:11px;fill:#1f2328}
.paper{fill:#fff}
.headline{font-size:20px;font-weight:600}
.plain{font-size:12px}
.soft{font-size:12px;fill:#59636e}
.name{font-weight:600;fill:#59636e}
.lane{fill:#f3f5f7}
.grid{stroke:#8c959f;stroke-opacity:.28}
.tick{fill:#59636e;text-anchor:middle}
.clock{fill:#59636e;font-variant-numeric:tabular-nums}
.offset{fill:#59636e;text-anchor:end;font-variant-numeric:tabular-nums}
.cut{fill:#8c959f;fill-opacity:.22}
.cut-text{font-style:italic}
.before{text-anchor:end}
.label,.before{paint-order:stroke;stroke:#f3f5f7;stroke-width:3px;stroke-linejoin:round}
.mark{fill:#0a58ca}
.tock{fill:#8c959f}
.bad{fill:#f65234}
.good{fill:#1f883d}
.unknown{fill:#8c959f}
.trouble{fill:#d1242f}
.unfinished{fill-opacity:.6;stroke:#f65234;stroke-dasharray:3 2}
rect.request{fill:#404659}
rect.search{fill:#6d6d6d}
rect.wait{fill:#e2d8a3}
rect.attempt{fill:#586d9b}
rect.unpair{fill:#8d1608}
rect.pair{fill:#de75fe}
rect.open{fill:#770298}
rect.close{fill:#59413b}
rect.check{fill:#d0c5f9}
rect.recovery{fill:#fab411}
rect.pass{fill:#96e6d6}
rect.stop{fill:#8f95ab}
rect.link{fill:#66a284}
@media(prefers-color-scheme:dark){
text{fill:#e6edf3}
.paper{fill:#0d1117}
.lane{fill:#181d24}
.soft,.name,.tick,.clock,.offset{fill:#9aa4af}
.label,.before{stroke:#181d24}
.mark{fill:#6cb0ff}
.trouble{fill:#ff7b72}
}
.in{fill:#fff}
.wait,.pair,.check,.recovery,.pass,.stop,.link{fill:#1f2328}
</style>
)";

// What the picture shows of the timeline.
struct Extent {
  std::int64_t beginPlace = 0;
  std::int64_t endPlace = 0;
  std::int64_t strips = 1;
  std::size_t firstEvent = 0;
};

Extent ExtentOf(const Timeline& timeline, const TimeScale& scale) {
  Extent extent;
  const std::int64_t tail = std::max(scale.Length() / kTailShare, kUsPerMs);
  extent.endPlace = scale.Length() + std::min(tail, kUsPerSecond);
  extent.beginPlace = std::max<std::int64_t>(0, extent.endPlace - kMostStrips * kLongestStripUs);
  if (timeline.events.size() > kMostDrawn) {
    const Event& first = timeline.events[timeline.events.size() - kMostDrawn];
    extent.beginPlace = std::max(extent.beginPlace, scale.PlaceOf(first.timeUs));
  }
  while (scale.PlaceOf(timeline.events[extent.firstEvent].timeUs) < extent.beginPlace) {
    ++extent.firstEvent;
  }
  const std::int64_t length = extent.endPlace - extent.beginPlace;
  extent.strips = std::clamp<std::int64_t>((length + kComfortableStripUs - 1) / kComfortableStripUs,
                                           1, kMostStrips);
  return extent;
}

const char* DotOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::kGood:
      return "good";
    case Verdict::kBad:
      return "bad";
    case Verdict::kUnknown:
      break;
  }
  return "unknown";
}

// "2026-11-23 07:52:45.123"; without the date if the log has only times of day.
std::string BeginOf(const Timeline& timeline) {
  const std::int64_t begin = timeline.events.front().clockUs;
  return ClockText(begin).substr(begin < kFirstDateUs ? kDateLength : 0);
}

// The line below the headline.
std::string About(const Timeline& timeline) {
  const std::size_t count = timeline.events.size();
  return (timeline.isTimed ? "From " + BeginOf(timeline) + ", " + DurationText(timeline.endUs)
                           : "The log has no times, so all steps have the same length") +
         ", " + std::to_string(count) + (count == 1 ? " notification" : " notifications") +
         (timeline.reading.empty() ? "" : ", " + timeline.reading);
}

class Picture {
 public:
  explicit Picture(const Timeline& timeline)
      : timeline_(timeline), scale_(timeline), extent_(ExtentOf(timeline, scale_)) {}

  std::string Draw() {
    DrawHead();
    DrawLegend();
    DrawStrips();
    DrawList();
    return Document();
  }

 private:
  void DrawHead();
  void DrawLegend();
  void DrawLegendEntry(double& x, const std::string& classes, const std::string& name);
  void DrawStrips();
  void DrawList();
  void DrawListed(const Event& event, double x, double y);
  std::string Document();

  const Timeline& timeline_;
  const TimeScale scale_;
  const Extent extent_;
  Canvas canvas_;
  double y_ = 0;  // the upper edge of what is drawn next
};

void Picture::DrawHead() {
  canvas_.Circle(kMargin + 7, kHeadlineBaseline - 8, 7, DotOf(timeline_.verdict), "");
  const double room = kStripRight - kMargin - 24;
  canvas_.Text(kMargin + 24, kHeadlineBaseline, "headline",
               Fit(timeline_.headline, room / kHeadlineSize / kBoldShare), timeline_.headline);
  canvas_.Text(kMargin + 24, kHeadlineBaseline + 22, "soft", About(timeline_));
  y_ = kHeadlineBaseline + 36;
  if (extent_.firstEvent > 0) {
    const std::int64_t begun = timeline_.events[extent_.firstEvent].timeUs;
    canvas_.Text(kMargin + 24, y_ + 6, "plain",
                 "Left out: the first " +
                     (timeline_.isTimed ? DurationText(begun) + " with " : "") +
                     std::to_string(extent_.firstEvent) +
                     " notifications. The same as a .json trace holds everything.");
    y_ += 18;
  }
}

void Picture::DrawLegend() {
  std::set<Activity> shown;
  std::set<Ending> endings;
  for (const Span& span : timeline_.spans) {
    shown.insert(span.activity);
    endings.insert(span.ending);
  }
  y_ += kLineHeight;
  double x = kMargin + 24;
  for (const Activity activity : shown) {
    DrawLegendEntry(x, LookOf(activity).style, LookOf(activity).name);
  }
  if (endings.contains(Ending::kBad)) {
    DrawLegendEntry(x, "bad", "ended badly");
  }
  if (endings.contains(Ending::kUnfinished)) {
    DrawLegendEntry(x, "wait unfinished", "not finished");
  }
  if (scale_.Stretches().size() > 1) {
    DrawLegendEntry(x, "cut", "time cut short");
  }
  y_ += kStripGap;
}

void Picture::DrawLegendEntry(double& x, const std::string& classes, const std::string& name) {
  const double width = kLegendBox + 5 + WidthOf(name) * kSmallSize;
  if (x + width > kStripRight) {
    x = kMargin + 24;
    y_ += kLineHeight;
  }
  canvas_.Rect({x, y_ - kLegendBox + 1.5, kLegendBox, kLegendBox}, classes, "", 2);
  canvas_.Text(x + kLegendBox + 5, y_, "out", name);
  x += width + kLegendGap;
}

void Picture::DrawStrips() {
  const std::int64_t length = extent_.endPlace - extent_.beginPlace;
  for (std::int64_t i = 0; i < extent_.strips; ++i) {
    const Section section{extent_.beginPlace + length * i / extent_.strips,
                          extent_.beginPlace + length * (i + 1) / extent_.strips};
    y_ = DrawStrip(timeline_, scale_, section, y_, canvas_) + kStripGap;
  }
}

void Picture::DrawList() {
  std::vector<const Event*> listed;
  for (std::size_t i = extent_.firstEvent; i < timeline_.events.size(); ++i) {
    if (timeline_.events[i].kind == "info") {
      listed.push_back(&timeline_.events[i]);
    }
  }
  if (listed.size() > kMostListed) {
    const std::size_t leftOut = listed.size() - kMostListed;
    listed.erase(listed.begin(), listed.begin() + static_cast<std::ptrdiff_t>(leftOut));
    canvas_.Text(kMargin, y_ + kTextSize, "plain",
                 "The last " + std::to_string(kMostListed) + " lines; " + std::to_string(leftOut) +
                     " before them are left out here.");
    y_ += kLineHeight + 4;
  }
  const std::size_t perColumn = (listed.size() + 1) / 2;
  for (std::size_t i = 0; i < listed.size(); ++i) {
    const bool isSecond = i >= perColumn;
    const double x = isSecond ? kPictureWidth / 2 + kColumnGap / 2 : kMargin;
    const auto row = static_cast<double>(isSecond ? i - perColumn : i);
    DrawListed(*listed[i], x, y_ + kTextSize + row * kLineHeight);
  }
  y_ += static_cast<double>(perColumn) * kLineHeight + kMargin;
}

void Picture::DrawListed(const Event& event, double x, double y) {
  const double column = kPictureWidth / 2 - kMargin - kColumnGap / 2;
  const double end = x + column;
  std::string title = event.message;
  if (timeline_.isTimed) {
    title.insert(0, ClockText(event.clockUs) + "  ");
    canvas_.Text(x, y, "clock", ClockText(event.clockUs).substr(kDateLength));
    x += kClockWidth + kOffsetWidth;
    canvas_.Text(x, y, "offset", PlaceText(event.timeUs, kUsPerMs));
    x += 12;
  }
  if (event.thread != 0) {
    canvas_.Text(x, y, "clock", "t" + std::to_string(event.thread));
    x += kThreadWidth;
  }
  canvas_.Text(x, y, event.trouble ? "trouble" : "out", Fit(event.words, (end - x) / kSmallSize),
               title);
}

std::string Picture::Document() {
  const std::string width = std::to_string(static_cast<int>(kPictureWidth));
  const std::string height = std::to_string(static_cast<int>(y_));
  Canvas paper;
  paper.Rect({0, 0, kPictureWidth, y_}, "paper");
  return R"(<svg xmlns="http://www.w3.org/2000/svg" width=")" + width + R"(" height=")" + height +
         R"(" viewBox="0 0 )" + width + " " + height + "\">\n<title>" + Escape(timeline_.headline) +
         "</title>\n" + kStyle + paper.TakeElements() + canvas_.TakeElements() + "</svg>\n";
}

}  // namespace

std::string DrawSvg(const Timeline& timeline) { return Picture(timeline).Draw(); }

}  // namespace lanvoss::timeline
