#include "timeline/strip.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "timeline/duration.h"

namespace lanvoss::timeline {
namespace {

// In pixels.
constexpr double kAxisHeight = 22;
constexpr double kRowHeight = 20;
constexpr double kRowGap = 3;
constexpr double kMarkHeight = 15;
constexpr double kLanePadding = 4;
constexpr double kLaneGap = 3;
constexpr double kLeastSpanWidth = 2.5;
constexpr double kCapWidth = 4;
constexpr double kRadius = 3;
constexpr double kMarkRadius = 3.5;
constexpr double kTextGap = 5;
constexpr double kBaseline = 14;  // of a text in a row
constexpr double kTickDistance = 90;

constexpr std::size_t kSecondsLength = 8;  // of a clock's text, from the hours

// Rows of a lane from the top that are drawn.
constexpr std::size_t kMostRows = 12;

std::string TitleOf(const Span& span, bool isTimed) {
  const char* const endings[] = {"", "", ", it ended badly", ", not finished when the log ends"};
  const std::string times = ": " + DurationText(span.endUs - span.beginUs) + ", from " +
                            DurationText(span.beginUs) + " to " + DurationText(span.endUs);
  return span.label + (isTimed ? times : "") +
         (span.thread != 0 ? ", thread " + std::to_string(span.thread) : "") +
         endings[static_cast<int>(span.ending)];
}

std::string TitleOf(const Mark& mark, bool isTimed) {
  return mark.words + (isTimed ? ", at " + DurationText(mark.timeUs) : "") +
         (mark.thread != 0 ? ", thread " + std::to_string(mark.thread) : "");
}

using Labels = std::vector<std::string>;

// The labels of a span, longest first; and the labels to use where there is no room for these.
std::pair<Labels, Labels> LabelsOf(const Span& span, bool isTimed) {
  Labels whole;
  if (span.ending == Ending::kUnfinished) {
    whole.push_back(span.label + ", not finished");
  } else if (span.activity != Activity::kLink && isTimed) {
    whole.push_back(span.label + " · " + DurationText(span.endUs - span.beginUs));
  }
  whole.push_back(span.label);
  return {whole, {span.label.substr(0, span.label.find_first_of(":,"))}};
}

// The first that is no wider than `room`; null when none is.
const std::string* Fitting(const Labels& labels, double room) {
  const auto found = std::ranges::find_if(
      labels, [&](const std::string& label) { return WidthOf(label) * kSmallSize <= room; });
  return found == labels.end() ? nullptr : &*found;
}

// The round distance of the axis' ticks.
std::int64_t TickStep(double pixelsPerUs) {
  constexpr std::int64_t kSteps[] = {1,   2,     5,     10,    20,     50,     100,    200,
                                     500, 1'000, 2'000, 5'000, 10'000, 15'000, 30'000, 60'000};
  for (const std::int64_t step : kSteps) {
    if (static_cast<double>(step * kUsPerMs) * pixelsPerUs >= kTickDistance) {
      return step * kUsPerMs;
    }
  }
  return kSteps[std::size(kSteps) - 1] * kUsPerMs;
}

class Strip {
 public:
  Strip(const Timeline& timeline, const TimeScale& scale, const Section& section, Canvas& canvas)
      : timeline_(timeline), scale_(scale), section_(section), canvas_(canvas) {}

  double Draw(double top);

 private:
  // A span as far as it lies in the strip.
  struct Piece {
    const Span* span;
    double left;
    double right;
  };
  struct AxisLabel {
    double x;  // of its middle
    const char* style;
    std::string text;
  };
  struct LaneContent {
    std::map<std::size_t, std::vector<Piece>> rows;
    std::vector<const Mark*> marks;
  };

  double PixelsPerUs() const {
    return (kStripRight - kStripLeft) /
           static_cast<double>(section_.endPlace - section_.beginPlace);
  }
  double XOfPlace(std::int64_t place) const {
    return kStripLeft + static_cast<double>(place - section_.beginPlace) * PixelsPerUs();
  }
  bool Holds(std::int64_t place) const {
    return place >= section_.beginPlace && place <= section_.endPlace;
  }
  bool IsLast() const { return section_.endPlace >= scale_.Length(); }
  bool GoesOn(const Span& span) const;

  std::map<std::size_t, LaneContent> Contents() const;
  std::optional<Piece> PieceOf(const Span& span) const;
  void DrawAxis(double top, double bottom);
  void DrawTicks(const TimeScale::Stretch& stretch, double top, double bottom,
                 std::vector<AxisLabel>& labels);
  void DrawCut(const TimeScale::Stretch& stretch, double top, double bottom,
               std::vector<AxisLabel>& labels);
  double DrawLane(const Lane& lane, const LaneContent& content, double top);
  void DrawRow(const std::vector<Piece>& pieces, double top);
  void DrawPiece(const Piece& piece, double top);
  double LabelPiece(const Piece& piece, double freeLeft, double freeRight, double top);
  void DrawMarks(const std::vector<const Mark*>& marks, double top);
  void DrawTick(const Mark& mark, double x, double top);
  double DrawMark(const Mark& mark, double x, double right, double top);

  const Timeline& timeline_;
  const TimeScale& scale_;
  const Section section_;
  Canvas& canvas_;
};

double Strip::Draw(double top) {
  const auto contents = Contents();
  const double lanesTop = top + kAxisHeight;
  // The height is known before anything is drawn, because the background is drawn first.
  double bottom = lanesTop;
  for (const auto& [lane, content] : contents) {
    const auto rows = std::min(content.rows.size(), kMostRows);
    bottom += 2 * kLanePadding + static_cast<double>(rows) * (kRowHeight + kRowGap) +
              (content.marks.empty() ? 0 : kMarkHeight) + kLaneGap;
  }
  double y = lanesTop;
  for (const auto& [lane, content] : contents) {
    y = DrawLane(timeline_.lanes[lane], content, y);
  }
  DrawAxis(top, bottom);
  for (y = lanesTop; const auto& [lane, content] : contents) {
    y += kLanePadding;
    std::size_t drawn = 0;
    for (const auto& [row, pieces] : content.rows) {
      if (drawn++ < kMostRows) {
        DrawRow(pieces, y);
        y += kRowHeight + kRowGap;
      }
    }
    if (!content.marks.empty()) {
      DrawMarks(content.marks, y);
      y += kMarkHeight;
    }
    y += kLanePadding + kLaneGap;
  }
  return bottom;
}

// A span that was not finished at the end of the log is drawn to the end of the strip.
bool Strip::GoesOn(const Span& span) const {
  return span.endUs == timeline_.endUs &&
         (span.ending == Ending::kUnfinished || span.activity == Activity::kLink);
}

std::map<std::size_t, Strip::LaneContent> Strip::Contents() const {
  std::map<std::size_t, LaneContent> contents;
  for (const Span& span : timeline_.spans) {
    if (const auto piece = PieceOf(span)) {
      contents[span.lane].rows[span.row].push_back(*piece);
    }
  }
  for (const Mark& mark : timeline_.marks) {
    if (Holds(scale_.PlaceOf(mark.timeUs))) {
      contents[mark.lane].marks.push_back(&mark);
    }
  }
  return contents;
}

std::optional<Strip::Piece> Strip::PieceOf(const Span& span) const {
  const std::int64_t begin = scale_.PlaceOf(span.beginUs);
  const std::int64_t end =
      GoesOn(span) && IsLast() ? section_.endPlace : scale_.PlaceOf(span.endUs);
  if (end < section_.beginPlace || begin > section_.endPlace ||
      (begin < section_.beginPlace && end == section_.beginPlace)) {
    return std::nullopt;
  }
  const double left = std::max(XOfPlace(begin), kStripLeft);
  const double right = std::min(XOfPlace(end), kStripRight);
  return Piece{&span, left, std::max(right, left + kLeastSpanWidth)};
}

double Strip::DrawLane(const Lane& lane, const LaneContent& content, double top) {
  const auto rows = static_cast<double>(std::min(content.rows.size(), kMostRows));
  const double height =
      2 * kLanePadding + rows * (kRowHeight + kRowGap) + (content.marks.empty() ? 0 : kMarkHeight);
  canvas_.Rect({kMargin, top, kStripRight - kMargin, height}, "lane", "", kRadius);
  const double y = top + kLanePadding + kBaseline;
  canvas_.Text(kMargin + kTextGap, y, "name", lane.label);
  if (content.rows.size() > kMostRows) {
    canvas_.Text(
        kMargin + kTextGap, y + kRowHeight, "clock",
        std::to_string(kMostRows) + " of " + std::to_string(content.rows.size()) + " rows");
  }
  return top + height + kLaneGap;
}

void Strip::DrawAxis(double top, double bottom) {
  std::vector<AxisLabel> labels;
  for (const auto& stretch : scale_.Stretches()) {
    if (stretch.endPlace < section_.beginPlace || stretch.beginPlace > section_.endPlace) {
      continue;
    }
    if (stretch.cut) {
      DrawCut(stretch, top + kAxisHeight, bottom, labels);
    } else {
      DrawTicks(stretch, top + kAxisHeight, bottom, labels);
    }
  }
  const double y = top + kBaseline - 2;
  const std::int64_t begun = timeline_.events.front().clockUs + scale_.TimeAt(section_.beginPlace);
  if (timeline_.isTimed) {
    canvas_.Text(kMargin + kTextGap, y, "clock",
                 ClockText(begun).substr(kDateLength, kSecondsLength));
  }
  double taken = kStripLeft - kMargin;
  for (const AxisLabel& label : labels) {
    const double half = WidthOf(label.text) * kSmallSize / 2;
    if (label.x - half >= taken && label.x + half <= kPictureWidth) {
      canvas_.Text(label.x, y, label.style, label.text);
      taken = label.x + half + kTextGap;
    }
  }
}

void Strip::DrawTicks(const TimeScale::Stretch& stretch, double top, double bottom,
                      std::vector<AxisLabel>& labels) {
  const std::int64_t step = TickStep(PixelsPerUs());
  const std::int64_t hidden = std::max<std::int64_t>(0, section_.beginPlace - stretch.beginPlace);
  const bool isLast = stretch.endPlace == scale_.Length();
  for (std::int64_t tick = (stretch.beginUs + hidden + step - 1) / step * step;
       tick <= stretch.endUs || isLast; tick += step) {
    const double x = XOfPlace(stretch.beginPlace + tick - stretch.beginUs);
    if (x > kStripRight) {
      return;
    }
    canvas_.Line(x, top - kTextGap, x, bottom, "grid");
    if (timeline_.isTimed) {
      labels.push_back({x, "tick", PlaceText(tick, step)});
    }
  }
}

void Strip::DrawCut(const TimeScale::Stretch& stretch, double top, double bottom,
                    std::vector<AxisLabel>& labels) {
  const double left = std::max(XOfPlace(stretch.beginPlace), kStripLeft);
  const double right = std::min(XOfPlace(stretch.endPlace), kStripRight);
  const std::string text = DurationText(stretch.endUs - stretch.beginUs);
  canvas_.Rect({left, top, right - left, bottom - top - kLaneGap}, "cut",
               text + " in which nothing was logged, cut short");
  if (WidthOf(text) * kSmallSize <= right - left) {
    labels.push_back({(left + right) / 2, "tick cut-text", text});
  }
}

void Strip::DrawRow(const std::vector<Piece>& pieces, double top) {
  for (const Piece& piece : pieces) {
    DrawPiece(piece, top);
  }
  double taken = kStripLeft;  // by the piece before and its label
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const double next = i + 1 < pieces.size() ? pieces[i + 1].left : kStripRight;
    taken = LabelPiece(pieces[i], taken, next, top);
  }
}

void Strip::DrawPiece(const Piece& piece, double top) {
  const Span& span = *piece.span;
  const double width = piece.right - piece.left;
  const std::string title = TitleOf(span, timeline_.isTimed);
  const std::string unfinished = span.ending == Ending::kUnfinished ? " unfinished" : "";
  canvas_.Rect({piece.left, top, width, kRowHeight},
               "span " + (LookOf(span.activity).style + unfinished), title,
               std::min(kRadius, width / 2));
  if (span.ending == Ending::kBad && scale_.PlaceOf(span.endUs) <= section_.endPlace) {
    const double cap = std::min(kCapWidth, width);
    canvas_.Rect({piece.right - cap, top, cap, kRowHeight}, "bad", title, std::min(1.5, cap / 2));
  }
}

// Inside the piece if it has room, otherwise in the free room after it or before it. Returns where
// the piece and its label end.
double Strip::LabelPiece(const Piece& piece, double freeLeft, double freeRight, double top) {
  const double cap = piece.span->ending == Ending::kBad ? kCapWidth : 0;
  const double inside = piece.right - piece.left - 2 * kTextGap - cap;
  const std::string inStyle = std::string("in ") + LookOf(piece.span->activity).style;
  const double y = top + kBaseline;
  const auto [whole, brief] = LabelsOf(*piece.span, timeline_.isTimed);
  for (const Labels* labels : {&whole, &brief}) {
    if (const auto* const label = Fitting(*labels, inside)) {
      canvas_.Text(piece.left + kTextGap, y, inStyle, *label);
      return piece.right;
    }
    if (const auto* const label = Fitting(*labels, freeRight - piece.right - 2 * kTextGap)) {
      canvas_.Text(piece.right + kTextGap, y, "label", *label);
      return piece.right + kTextGap + WidthOf(*label) * kSmallSize;
    }
    if (const auto* const label = Fitting(*labels, piece.left - freeLeft - 2 * kTextGap)) {
      canvas_.Text(piece.left - kTextGap, y, "before", *label);
      return piece.right;
    }
  }
  if (const std::string cut = Fit(brief.front(), inside / kSmallSize); !cut.empty()) {
    canvas_.Text(piece.left + kTextGap, y, inStyle, cut);
  }
  return piece.right;
}

void Strip::DrawMarks(const std::vector<const Mark*>& marks, double top) {
  const auto x = [&](const Mark& mark) { return XOfPlace(scale_.PlaceOf(mark.timeUs)); };
  const auto isTick = [](const Mark* mark) { return mark->label.empty(); };
  double taken = kStripLeft;  // by the labelled mark before
  for (auto mark = marks.begin(); mark != marks.end(); ++mark) {
    if (isTick(*mark)) {
      if (x(**mark) >= taken) {
        DrawTick(**mark, x(**mark), top);
      }
      continue;
    }
    const auto next = std::find_if_not(mark + 1, marks.end(), isTick);
    const double right = next == marks.end() ? kStripRight : x(**next) - kMarkRadius;
    taken = DrawMark(**mark, x(**mark), right, top);
  }
}

void Strip::DrawTick(const Mark& mark, double x, double top) {
  canvas_.Rect({x - 0.5, top + 4.5, 1.5, 7}, mark.trouble ? "bad" : "tock",
               TitleOf(mark, timeline_.isTimed));
}

// Returns where the mark and its label end, which is no further than `right`.
double Strip::DrawMark(const Mark& mark, double x, double right, double top) {
  const double y = top + kMarkHeight / 2;
  const double left = x + kMarkRadius + 2;
  canvas_.Circle(x, y, kMarkRadius, mark.trouble ? "bad" : "mark",
                 TitleOf(mark, timeline_.isTimed));
  const std::string label = Fit(mark.label, (right - left - 2) / kSmallSize);
  if (!label.empty()) {
    canvas_.Text(left, y + 4, "label", label, TitleOf(mark, timeline_.isTimed));
  }
  return left + WidthOf(label) * kSmallSize;
}

}  // namespace

double DrawStrip(const Timeline& timeline, const TimeScale& scale, const Section& section,
                 double top, Canvas& canvas) {
  return Strip(timeline, scale, section, canvas).Draw(top);
}

}  // namespace lanvoss::timeline
