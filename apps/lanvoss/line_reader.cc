#include "line_reader.h"

#include <array>
#include <poll.h>
#include <unistd.h>

namespace lanvoss::program {
namespace {

// How late an interruption of a wait for input may be noticed.
constexpr int kNoticeMs = 100;
constexpr std::size_t kReadLength = 4096;

bool InputIsThere() {
  pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
  return ::poll(&input, 1, kNoticeMs) > 0;
}

}  // namespace

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
  while (!interrupted.stop_requested()) {
    if (InputIsThere()) {
      std::array<char, kReadLength> buffer{};
      const ssize_t length = ::read(STDIN_FILENO, buffer.data(), buffer.size());
      unread_.append(buffer.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
      return length > 0;
    }
  }
  return false;
}

}  // namespace lanvoss::program
