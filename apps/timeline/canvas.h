// The elements that the picture is drawn with.
#pragma once

#include <string>
#include <string_view>

namespace lanvoss::timeline {

// Sizes of the fonts, in pixels, as the style sheet has them.
inline constexpr double kHeadlineSize = 20;
inline constexpr double kTextSize = 12;
inline constexpr double kSmallSize = 11;

class Canvas {
 public:
  struct Box {
    double x;
    double y;
    double width;
    double height;
  };

  // `classes` are of the style sheet. `title` is shown when the reader points at the element.
  // `title` and `text` may be foreign text.
  void Rect(const Box& box, std::string_view classes, std::string_view title = "",
            double radius = 0);
  void Circle(double x, double y, double radius, std::string_view classes, std::string_view title);
  void Line(double x1, double y1, double x2, double y2, std::string_view classes);
  void Text(double x, double y, std::string_view classes, std::string_view text,
            std::string_view title = "");

  std::string TakeElements();

 private:
  void Close(std::string_view element, std::string_view title);

  std::string elements_;
};

// `text` as the content of an XML element or attribute. Control characters, characters that change
// the direction of writing, and invalid UTF-8 become U+FFFD.
std::string Escape(std::string_view text);

// The approximate width of `text`, in units of the font's size.
double WidthOf(std::string_view text);

// `text`, or its beginning and an ellipsis when it is wider than `room` units of the font's size;
// empty when there is no room for a few characters.
std::string Fit(std::string_view text, double room);

}  // namespace lanvoss::timeline
