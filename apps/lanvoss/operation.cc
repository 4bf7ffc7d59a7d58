#include "operation.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <system_error>

#include "request.h"

namespace lanvoss::program {
namespace {

using Kind = Operation::Kind;

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kOptionMark = "--";

std::string_view Trimmed(std::string_view text) {
  const auto first = std::min(text.find_first_not_of(kBlanks), text.size());
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// Takes the first word off `rest`, with the blanks behind it.
std::string_view TakeWord(std::string_view& rest) {
  const auto word = rest.substr(0, rest.find_first_of(kBlanks));
  rest = Trimmed(rest.substr(word.size()));
  return word;
}

// Takes `option` off `rest` when that is its first word.
bool TakeOption(std::string_view& rest, std::string_view option) {
  std::string_view behind = rest;
  if (TakeWord(behind) != option) {
    return false;
  }
  rest = behind;
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
  std::optional<std::int32_t> gapMs;
  if (TakeOption(rest, "--gap")) {
    gapMs = Milliseconds(TakeWord(rest));
  }
  const bool direct = !gapMs && TakeOption(rest, "--direct");
  return {.kind = Kind::kIp, .request = IpRequest(Name(rest), gapMs, direct)};
}

Operation ParseWatch(std::string_view rest) {
  if (rest.empty()) {
    return {.kind = Kind::kWatch};
  }
  const bool keep = TakeOption(rest, "--keep");
  return {.kind = Kind::kWatch, .request = WatchRequest(Name(rest), keep)};
}

Operation ParseUnpair(std::string_view rest) {
  return {.kind = Kind::kUnpair, .request = Name(rest)};
}

Operation ParseSleep(std::string_view rest) {
  return {.kind = Kind::kSleep, .sleepMs = Milliseconds(rest)};
}

template <Kind kKind>
Operation ParseAlone(std::string_view rest) {
  if (!rest.empty()) {
    throw OperationError("nothing may follow, but there is \"" + std::string(rest) + "\"");
  }
  return {.kind = kKind};
}

struct Form {
  std::string_view word;
  Operation (*parse)(std::string_view rest);
};

constexpr Form kForms[] = {{"ip", ParseIp},
                           {"ping", ParseAlone<Kind::kPing>},
                           {"disconnect", ParseAlone<Kind::kDisconnect>},
                           {"unpair", ParseUnpair},
                           {"abort", ParseAlone<Kind::kAbort>},
                           {"watch", ParseWatch},
                           {"stop", ParseAlone<Kind::kStop>},
                           {"sleep", ParseSleep}};

Operation Parse(std::string_view text) {
  // It parts the fields of a request, so no name can have one.
  if (text.find('\n') != std::string_view::npos) {
    throw OperationError("there is a line feed in it");
  }
  std::string_view rest = text;
  const std::string_view word = TakeWord(rest);
  const auto* form = std::ranges::find(kForms, word, &Form::word);
  if (form == std::end(kForms)) {
    throw OperationError("there is no operation \"" + std::string(word) + "\"");
  }
  Operation operation = form->parse(rest);
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

std::vector<std::string> OperationWords() {
  std::vector<std::string> words;
  for (const Form& form : kForms) {
    words.emplace_back(form.word);
  }
  return words;
}

}  // namespace lanvoss::program
