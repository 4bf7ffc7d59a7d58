#include "registry/split_text.h"

#include <cstddef>

namespace lanvoss {

std::vector<std::string> SplitText(std::string_view text, std::string_view delimiters) {
  std::vector<std::string> fields;
  std::size_t start = text.find_first_not_of(delimiters);
  while (start != std::string_view::npos) {
    const std::size_t end = text.find_first_of(delimiters, start);
    fields.emplace_back(text.substr(start, end - start));
    if (end == std::string_view::npos) {
      break;
    }
    if (end + 1 < text.size() && text[end + 1] == delimiters.front()) {
      fields.emplace_back();
    }
    start = text.find_first_not_of(delimiters, end);
  }
  return fields;
}

}  // namespace lanvoss
