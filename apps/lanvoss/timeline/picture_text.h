// Texts of the picture: foreign ones made harmless, and cut to their room.
#pragma once

#include <string>
#include <string_view>

namespace lanvoss::program {

// `text` as the content of an XML element or attribute. Control characters, those that turn the
// direction of writing, and what is no UTF-8 become U+FFFD.
std::string Escape(std::string_view text);

// How wide `text` will be about, in units of the font's size.
double WidthOf(std::string_view text);

// `text`, or its beginning and an ellipsis when it is wider than `room` units of the font's size;
// empty when there is no room for a few characters.
std::string Fit(std::string_view text, double room);

}  // namespace lanvoss::program
