// What the user may have meant by a word that is not known.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lanvoss::program {

// "; did you mean ip?", with the known word that is most like `word`; empty when none is.
std::string DidYouMean(std::string_view word, const std::vector<std::string>& known);

}  // namespace lanvoss::program
