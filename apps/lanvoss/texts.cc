#include "texts.h"

#include <algorithm>

namespace lanvoss::program {

std::string Printable(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const std::size_t control = text.front() == '\n' ? 0 : ControlLength(text);
    printable += control > 0 ? '?' : text.front();
    text.remove_prefix(std::max<std::size_t>(control, 1));
  }
  return printable;
}

}  // namespace lanvoss::program
