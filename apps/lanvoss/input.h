// Standard input, in pieces.
#pragma once

#include <string>

namespace lanvoss::program {

enum class Input { kMore, kNoneYet, kEnd };

// Waits for input, for kNoticeMs at most, and appends it to `text`.
Input ReadInput(std::string& text);

}  // namespace lanvoss::program
