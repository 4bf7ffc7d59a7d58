#include "timeline/picture_text.h"

#include <cstddef>

#include "platform/unicode.h"

namespace lanvoss::program {
namespace {

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

// The next character of `text`, made harmless; moves `at` behind it.
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
  std::size_t end = 0;  // of what leaves room for an ellipsis
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

}  // namespace lanvoss::program
