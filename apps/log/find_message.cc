#include "log/find_message.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "lanvoss/client/log_line.h"

namespace lanvoss::log {
namespace {

// What a host's logger writes before a message is shorter.
constexpr std::size_t kLongestPrefix = 512;

// Whether a message can begin with it.
bool IsFirst(char character) {
  return std::ranges::any_of(kLogLines, [&](const LogLineKind& kind) {
    const char first = kind.pattern.front();
    return first == '{' ? std::isdigit(static_cast<unsigned char>(character)) != 0
                        : first == character;
  });
}

bool IsOfWord(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

}  // namespace

// The first one counts: a device's name may contain what looks like another message.
std::optional<std::string_view> FindMessage(std::string_view line) {
  const std::size_t end = std::min(line.size(), kLongestPrefix);
  for (std::size_t at = 0; at < end; ++at) {
    const bool mayBegin = (at == 0 || !IsOfWord(line[at - 1])) && IsFirst(line[at]);
    if (mayBegin && IsKnown(ParseLogLine(line.substr(at)))) {
      return line.substr(at);
    }
  }
  return std::nullopt;
}

}  // namespace lanvoss::log
