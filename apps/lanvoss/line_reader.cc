#include "line_reader.h"

#include "input.h"

namespace lanvoss::program {

std::optional<std::string> LineReader::Next(const std::stop_token& interrupted) {
  while (unread_.find('\n') == std::string::npos && ReadMore(interrupted)) {
  }
  if (unread_.empty() || interrupted.stop_requested()) {
    return std::nullopt;
  }
  const std::size_t end = unread_.find('\n');  // the last line may have none
  std::string line = unread_.substr(0, end);
  unread_.erase(0, line.size() + 1);
  return line;
}

// Waits for input. False: there is none any more, or `interrupted` is requested.
bool LineReader::ReadMore(const std::stop_token& interrupted) {
  Input input = Input::kNoneYet;
  while (input == Input::kNoneYet && !interrupted.stop_requested()) {
    input = ReadInput(kStandardInput, unread_);
  }
  return input == Input::kMore;
}

}  // namespace lanvoss::program
