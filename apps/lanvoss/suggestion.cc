#include "suggestion.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace lanvoss::program {
namespace {

// A third of the letters may be wrong, and one in any case.
std::size_t MostMistakes(std::string_view word) {
  return std::max<std::size_t>(1, word.size() / 3);
}

// A longer word is no mistyped one, and comparing it would take long.
constexpr std::size_t kLongestWord = 64;

// How many letters must be put in, taken out, replaced, or swapped with the next one.
std::size_t Distance(std::string_view word, std::string_view known) {
  // At [i][j]: of the first i letters of the word and the first j of the known one.
  std::vector<std::vector<std::size_t>> distances(word.size() + 1,
                                                  std::vector<std::size_t>(known.size() + 1));
  for (std::size_t i = 0; i <= word.size(); ++i) {
    for (std::size_t j = 0; j <= known.size(); ++j) {
      std::size_t& distance = distances[i][j];
      if (i == 0 || j == 0) {
        distance = i + j;
        continue;
      }
      const std::size_t replaced = distances[i - 1][j - 1] + (word[i - 1] == known[j - 1] ? 0 : 1);
      distance = std::min({replaced, distances[i - 1][j] + 1, distances[i][j - 1] + 1});
      if (i > 1 && j > 1 && word[i - 1] == known[j - 2] && word[i - 2] == known[j - 1]) {
        distance = std::min(distance, distances[i - 2][j - 2] + 1);
      }
    }
  }
  return distances.back().back();
}

}  // namespace

std::string DidYouMean(std::string_view word, const std::vector<std::string>& known) {
  if (word.size() < 2 || word.size() > kLongestWord) {
    return {};
  }
  std::pair<std::size_t, const std::string*> best = {MostMistakes(word) + 1, nullptr};
  for (const std::string& each : known) {
    const std::size_t distance = each.starts_with(word) ? 0 : Distance(word, each);
    if (distance < best.first) {
      best = {distance, &each};
    }
  }
  return best.second == nullptr ? "" : "; did you mean " + *best.second + "?";
}

}  // namespace lanvoss::program
