// Any text, split at any delimiters: the fields are those of the rules, taken one character at a
// time. An input is the number of delimiters as a digit, the delimiters, and the text.
#include "registry/split_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "require.h"

namespace {

using Fields = std::vector<std::string>;

// The remainders of the digits '0' to '3' are their values.
constexpr std::size_t kDelimiterCounts = 4;

Fields Expected(std::string_view text, std::string_view delimiters) {
  Fields fields;
  std::string field;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (delimiters.find(text[i]) == std::string_view::npos) {
      field += text[i];
    } else if (!field.empty()) {
      fields.push_back(field);
      field.clear();
      if (i + 1 < text.size() && text[i + 1] == delimiters[0]) {
        fields.emplace_back();
      }
    }
  }
  if (!field.empty()) {
    fields.push_back(field);
  }
  return fields;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::string input(data + 1, data + size);
  const std::size_t count = std::min(data[0] % kDelimiterCounts, input.size());
  const std::string delimiters = input.substr(0, count);
  const std::string text = input.substr(count);
  Require(std::ranges::equal(lanvoss::SplitText(text, delimiters), Expected(text, delimiters)),
          "the fields are those of the rules");
  return 0;
}
