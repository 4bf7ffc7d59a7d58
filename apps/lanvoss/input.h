// What arrives from standard input or a pipe, in pieces.
#pragma once

#include <string>

namespace lanvoss::program {

enum class Input { kMore, kNoneYet, kEnd };

inline constexpr int kStandardInput = 0;

// Waits for input from the file of number `file`, for kNoticeMs at most, and appends it to `text`.
Input ReadInput(int file, std::string& text);

}  // namespace lanvoss::program
