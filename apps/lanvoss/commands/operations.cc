#include "commands/operations.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <functional>
#include <iterator>
#include <system_error>
#include <utility>

#include "commands/link.h"
#include "session.h"

namespace lanvoss::program {
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

// One call of the library's own object.
CallResult Ask(Session& session, std::function<void(LanvossInterface&, CallResult&)> call) {
  CallResult result = session.Library().Call(std::move(call));
  if (result.outcome.reason == Reason::kPlatformError && result.outcome.step == Step::kSearch &&
      !result.outcome.words.empty() && result.text.empty()) {
    throw std::runtime_error(result.outcome.words);
  }
  return result;
}

OperationResult DoIp(Session& session, const Operation& operation) {
  const CallResult result = Ask(session, [request = operation.request](auto& object, auto& given) {
    given.text = object.GetDeviceIp(request);
  });
  if (!result.text.empty()) {
    return {result.text, "the link is up: " + result.text};
  }
  const std::string name = operation.request.substr(operation.request.rfind('\n') + 1);
  Outcome failure = ToOutcome(name, result.outcome);
  std::string words = failure.complaint;
  return {"no link", std::move(words), std::move(failure)};
}

OperationResult DoPing(Session& session, const Operation&) {
  const CallResult result =
      Ask(session, [](auto& object, auto& given) { given.text = object.PingCheck(); });
  if (!result.replies) {
    return {"no link to probe", "there is no link to probe"};
  }
  std::string text = "replies: " + std::to_string(*result.replies);
  if (result.isRecovery) {
    text += ", recovery: " + (result.text.empty() ? "no link" : result.text);
  }
  return {text, text};
}

// Of an operation that returns a number: `words` for `good`, `otherwise` for any other.
OperationResult InWords(const CallResult& result, std::int32_t good, const char* words,
                        const char* otherwise) {
  return {std::to_string(result.number), result.number == good ? words : otherwise};
}

OperationResult DoDisconnect(Session& session, const Operation&) {
  return InWords(
      Ask(session, [](auto& object, auto& given) { given.number = object.DisConnect(""); }), 1,
      "there is no link any more", "the platform did not close the link");
}

OperationResult DoUnpair(Session& session, const Operation& operation) {
  const CallResult result = Ask(session, [name = operation.request](auto& object, auto& given) {
    given.number = object.Unpair(name);
  });
  return InWords(result, 0, "asked the system to remove the pairing", "could not unpair");
}

OperationResult DoWatch(Session& session, const Operation& operation) {
  const CallResult result = Ask(session, [request = operation.request](auto& object, auto& given) {
    given.number = object.StartWatch(request);
  });
  return InWords(result, 0, "the watcher runs", "the platform did not start its watcher");
}

OperationResult DoStop(Session& session, const Operation&) {
  return InWords(Ask(session, [](auto& object, auto& given) { given.number = object.StopWatch(); }),
                 0, "the watcher is stopped", "the watcher could not be stopped");
}

OperationResult DoAbort(Session& session, const Operation&) {
  return InWords(
      Ask(session, [](auto& object, auto& given) { given.number = object.AbortConnect(""); }), 0,
      "no attempt goes on", "");
}

OperationResult DoSleep(Session& session, const Operation& operation) {
  const std::chrono::milliseconds time(operation.sleepMs);
  const char* const text = session.SleepUnlessStopped(time) ? "done" : "interrupted";
  return {text, text};
}

}  // namespace

struct OperationKind {
  std::string_view word;
  std::string_view takes;
  std::string_view help;
  Operation (*parse)(std::string_view rest);
  OperationResult (*run)(Session& session, const Operation& operation);
};

namespace {

constexpr OperationKind kKinds[] = {
    {"ip", "[--gap MS | --direct] NAME", "find, pair and connect; the result is LOCAL,REMOTE",
     ParseIp, DoIp},
    {"ping", "", "probe the link; pair and connect a silent device again", ParseNothing, DoPing},
    {"disconnect", "", "close the link", ParseNothing, DoDisconnect},
    {"unpair", "NAME", "start to remove the pairing", ParseUnpair, DoUnpair},
    {"watch", "[[--keep] NAME]", "start to look for devices", ParseWatch, DoWatch},
    {"stop", "", "stop looking", ParseNothing, DoStop},
    {"abort", "", "give up the attempt", ParseNothing, DoAbort},
    {"sleep", "MS", "wait", ParseSleep, DoSleep},
};

Operation Parse(std::string_view text) {
  // It separates the fields of a request, so no name can have one.
  if (text.find('\n') != std::string_view::npos) {
    throw OperationError("it contains a line feed");
  }
  std::string_view rest = text;
  const std::string_view word = TakeWord(rest);
  const auto* kind = std::ranges::find(kKinds, word, &OperationKind::word);
  if (kind == std::end(kKinds)) {
    throw OperationError("unknown operation \"" + std::string(word) + "\"");
  }
  Operation operation = kind->parse(rest);
  operation.kind = kind;
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

OperationResult RunOperation(Session& session, const Operation& operation) {
  return operation.kind->run(session, operation);
}

bool IsComment(std::string_view line) {
  const std::string_view text = Trimmed(line);
  return text.empty() || text.starts_with('#');
}

std::string OperationHelp() {
  constexpr std::size_t kUsageWidth = 31;
  std::string help;
  for (const OperationKind& kind : kKinds) {
    std::string usage = std::string(kind.word) + " " + std::string(kind.takes);
    usage.resize(kUsageWidth, ' ');
    help += "  " + usage + std::string(kind.help) + "\n";
  }
  return help;
}

std::vector<std::string> OperationWords() {
  std::vector<std::string> words;
  for (const OperationKind& kind : kKinds) {
    words.emplace_back(kind.word);
  }
  return words;
}

}  // namespace lanvoss::program
