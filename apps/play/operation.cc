#include "play/operation.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <system_error>

namespace lanvoss::play {
namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kOptionMark = "--";

std::string_view Trimmed(std::string_view text) {
  const auto first = std::min(text.find_first_not_of(kBlanks), text.size());
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// Moves the first word out of `rest`, with the blanks after it.
std::string_view TakeWord(std::string_view& rest) {
  const auto word = rest.substr(0, rest.find_first_of(kBlanks));
  rest = Trimmed(rest.substr(word.size()));
  return word;
}

// Removes `option` from `rest` if it is the first word.
bool TakeOption(std::string_view& rest, std::string_view option) {
  std::string_view remaining = rest;
  if (TakeWord(remaining) != option) {
    return false;
  }
  rest = remaining;
  return true;
}

std::string Name(std::string_view rest) {
  if (rest.empty()) {
    throw OperationError("NAME is missing");
  }
  if (rest.starts_with(kOptionMark)) {
    throw OperationError("unknown option " + std::string(TakeWord(rest)));
  }
  return std::string(rest);
}

std::int32_t Milliseconds(std::string_view word) {
  std::int32_t number = -1;
  const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (fault != std::errc() || end != word.data() + word.size() || number < 0) {
    throw OperationError("expected a whole number of milliseconds, not \"" + std::string(word) +
                         "\"");
  }
  return number;
}

Operation ParseIp(std::string_view rest) {
  if (TakeOption(rest, "--gap")) {
    const std::string gap = std::to_string(Milliseconds(TakeWord(rest)));
    return {.request = gap + "\n" + Name(rest)};
  }
  const bool direct = TakeOption(rest, "--direct");
  return {.request = (direct ? "\n" : "") + Name(rest)};
}

Operation ParseWatch(std::string_view rest) {
  const bool keep = TakeOption(rest, "--keep");
  return {.request = rest.empty() && !keep ? "" : (keep ? "\n" : "") + Name(rest)};
}

Operation ParseUnpair(std::string_view rest) { return {.request = Name(rest)}; }

Operation ParseSleep(std::string_view rest) { return {.sleepMs = Milliseconds(rest)}; }

Operation ParseNothing(std::string_view rest) {
  if (!rest.empty()) {
    throw OperationError("unexpected text \"" + std::string(rest) + "\"");
  }
  return {};
}

struct Kind {
  Verb verb;
  std::string_view word;
  std::string_view takes;
  std::string_view help;
  Operation (*parse)(std::string_view rest);
};

constexpr Kind kKinds[] = {
    {Verb::kIp, "ip", "[--gap MS | --direct] NAME",
     "find, pair and connect; the result is LOCAL,REMOTE", ParseIp},
    {Verb::kPing, "ping", "", "probe the link; pair and connect a silent device again",
     ParseNothing},
    {Verb::kDisconnect, "disconnect", "", "close the link", ParseNothing},
    {Verb::kUnpair, "unpair", "NAME", "start to remove the pairing", ParseUnpair},
    {Verb::kWatch, "watch", "[[--keep] NAME]", "start to look for devices", ParseWatch},
    {Verb::kStop, "stop", "", "stop looking", ParseNothing},
    {Verb::kAbort, "abort", "", "give up the attempt", ParseNothing},
    {Verb::kSleep, "sleep", "MS", "wait", ParseSleep},
};

Operation Parse(std::string_view text) {
  // It separates the fields of a request, so no name can have one.
  if (text.find('\n') != std::string_view::npos) {
    throw OperationError("it contains a line feed");
  }
  std::string_view rest = text;
  const std::string_view word = TakeWord(rest);
  const auto* kind = std::ranges::find(kKinds, word, &Kind::word);
  if (kind == std::end(kKinds)) {
    throw OperationError("unknown operation \"" + std::string(word) + "\"");
  }
  Operation operation = kind->parse(rest);
  operation.verb = kind->verb;
  operation.text = text;
  return operation;
}

}  // namespace

Operation ParseOperation(std::string_view text, const std::string& place) {
  try {
    return Parse(Trimmed(text));
  } catch (const OperationError& error) {
    throw OperationError(place + ": " + error.what());
  }
}

bool IsComment(std::string_view line) {
  const std::string_view text = Trimmed(line);
  return text.empty() || text.starts_with('#');
}

std::string OperationHelp() {
  constexpr std::size_t kUsageWidth = 31;
  std::string help;
  for (const Kind& kind : kKinds) {
    std::string usage = std::string(kind.word) + " " + std::string(kind.takes);
    usage.resize(kUsageWidth, ' ');
    help += "  " + usage + std::string(kind.help) + "\n";
  }
  return help;
}

std::vector<std::string> OperationWords() {
  std::vector<std::string> words;
  for (const Kind& kind : kKinds) {
    words.emplace_back(kind.word);
  }
  return words;
}

}  // namespace lanvoss::play
