#include "timeline/canvas.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "platform/unicode.h"

namespace lanvoss::timeline {
namespace {

// " NAME='VALUE'" to a tenth of a pixel.
std::string Number(std::string_view name, double value) {
  std::array<char, 64> digits{};
  std::snprintf(digits.data(), digits.size(), "%.1f", value);
  std::string text(digits.data());
  if (text.ends_with(".0")) {
    text.resize(text.size() - 2);
  }
  return " " + std::string(name) + "=\"" + text + "\"";
}

std::string Class(std::string_view classes) { return " class=\"" + std::string(classes) + "\""; }

// In units of the font's size, of the widest among the usual fonts.
constexpr double kNarrowWidth = 0.37;
constexpr double kUsualWidth = 0.62;
constexpr double kCapitalWidth = 0.74;
constexpr double kWideWidth = 1.05;  // of ideographs, pictures and the like
constexpr char32_t kFirstWide = 0x1100;
constexpr double kEllipsisWidth = 1;
constexpr double kLeastRoom = 4;

bool IsHarmful(char32_t point) {
  const bool isControl = point < 0x20 || (point >= 0x7F && point < 0xA0);
  const bool isLineEnd = point == 0x2028 || point == 0x2029;
  const bool turnsDirection = point == 0x061C || point == 0x200E || point == 0x200F ||
                              (point >= 0x202A && point <= 0x202E) ||
                              (point >= 0x2066 && point <= 0x2069);
  const bool isNoCharacter = (point & 0xFFFE) == 0xFFFE || (point >= 0xFDD0 && point <= 0xFDEF);
  return isControl || isLineEnd || turnsDirection || isNoCharacter;
}

// The next character of `text`, made harmless; moves `at` after it.
char32_t Next(std::string_view text, std::size_t& at) {
  const char32_t point = platform::unicode::NextUtf8(text, at);
  return IsHarmful(point) ? platform::kReplacementCharacter : point;
}

double WidthOfPoint(char32_t point) {
  constexpr std::u32string_view kNarrow = U" .,:;'!|()[]/ijltfrI-";
  if (kNarrow.find(point) != std::u32string_view::npos) {
    return kNarrowWidth;
  }
  if (point >= kFirstWide) {
    return kWideWidth;
  }
  const bool isCapital = (point >= 'A' && point <= 'Z') || point == 'm' || point == 'w';
  return isCapital ? kCapitalWidth : kUsualWidth;
}

}  // namespace

void Canvas::Rect(const Box& box, std::string_view classes, std::string_view title, double radius) {
  elements_ += "<rect" + Number("x", box.x) + Number("y", box.y) + Number("width", box.width) +
               Number("height", box.height) + (radius > 0 ? Number("rx", radius) : "") +
               Class(classes);
  Close("rect", title);
}

void Canvas::Circle(double x, double y, double radius, std::string_view classes,
                    std::string_view title) {
  elements_ += "<circle" + Number("cx", x) + Number("cy", y) + Number("r", radius) + Class(classes);
  Close("circle", title);
}

void Canvas::Line(double x1, double y1, double x2, double y2, std::string_view classes) {
  elements_ += "<line" + Number("x1", x1) + Number("y1", y1) + Number("x2", x2) + Number("y2", y2) +
               Class(classes);
  Close("line", "");
}

void Canvas::Text(double x, double y, std::string_view classes, std::string_view text,
                  std::string_view title) {
  elements_ += "<text" + Number("x", x) + Number("y", y) + Class(classes) + ">" + Escape(text);
  if (!title.empty()) {
    elements_ += "<title>" + Escape(title) + "</title>";
  }
  elements_ += "</text>\n";
}

std::string Canvas::TakeElements() { return std::exchange(elements_, {}); }

void Canvas::Close(std::string_view element, std::string_view title) {
  elements_ += title.empty()
                   ? "/>\n"
                   : "><title>" + Escape(title) + "</title></" + std::string(element) + ">\n";
}

std::string Escape(std::string_view text) {
  std::string escaped;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t point = Next(text, at);
    switch (point) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        platform::unicode::AppendUtf8(escaped, point);
    }
  }
  return escaped;
}

double WidthOf(std::string_view text) {
  double width = 0;
  for (std::size_t at = 0; at < text.size();) {
    width += WidthOfPoint(Next(text, at));
  }
  return width;
}

std::string Fit(std::string_view text, double room) {
  std::size_t end = 0;  // of the part that leaves room for an ellipsis
  double width = 0;
  for (std::size_t at = 0; at < text.size();) {
    width += WidthOfPoint(Next(text, at));
    if (width <= room - kEllipsisWidth) {
      end = at;
    }
    if (width > room) {
      return room < kLeastRoom ? "" : std::string(text.substr(0, end)) + "…";
    }
  }
  return std::string(text);
}

}  // namespace lanvoss::timeline
