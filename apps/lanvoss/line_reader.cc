#include "line_reader.h"

namespace lanvoss::program {

LineReader::LineReader(Session& session)
    : session_(session), input_(kStandardInput, session.Change()) {}

std::optional<std::string> LineReader::Next() {
  while (unread_.find('\n') == std::string::npos && ReadMore()) {
  }
  if (unread_.empty() || session_.IsInterrupted()) {
    return std::nullopt;
  }
  const std::size_t end = unread_.find('\n');  // the last line may have none
  std::string line = unread_.substr(0, end);
  unread_.erase(0, line.size() + 1);
  return line;
}

// Waits for input. False: the input has ended, or it was interrupted.
bool LineReader::ReadMore() {
  Input::State state = Input::State::kNoneYet;
  while (!session_.IsInterrupted()) {
    state = input_.Take(unread_);
    if (state != Input::State::kNoneYet) {
      return state == Input::State::kMore;
    }
    session_.Change()->Wait();
  }
  return false;
}

}  // namespace lanvoss::program
