// Narrow texts, which are in the code page of the system, as others take them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lanvoss::program {

// The text as a terminal may have it: what would steer it, as the escape character in a device's
// name, becomes a question mark. Line ends stay.
std::string Printable(std::string_view text);

// How many bytes a control character at the beginning of `text` has; 0: there is none. Each kind of
// system knows its code page.
std::size_t ControlLength(std::string_view text);

// How many characters the text shows. Each kind of system knows.
std::size_t CharactersIn(const std::string& text);

// Each kind of system converts its code page. What is no text in it is left to whoever takes it.
std::string ToUtf8(const std::string& text);

}  // namespace lanvoss::program
