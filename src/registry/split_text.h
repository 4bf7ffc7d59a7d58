#pragma once

#include <string_view>
#include <vector>

namespace lanvoss {

// Splits at every character of `delimiters`. Separators at the start are skipped and a run of them
// ends one field; but where the delimiters' first character follows the separator that ended a
// field, one empty field comes after it. With "|": "a||b" and "a|||b" give "a", "", "b"; "|a" and
// "a|" give "a"; "" gives nothing. The fields are views into `text`.
std::vector<std::string_view> SplitText(std::string_view text, std::string_view delimiters);

}  // namespace lanvoss
