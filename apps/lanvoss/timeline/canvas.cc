#include "timeline/canvas.h"

#include <array>
#include <cstdio>
#include <utility>

#include "timeline/picture_text.h"

namespace lanvoss::program {
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

}  // namespace lanvoss::program
