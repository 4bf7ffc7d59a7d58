#include "commands/operations.h"

#include <chrono>
#include <functional>
#include <stdexcept>
#include <utility>

#include "commands/link.h"
#include "session.h"

namespace lanvoss::program {
namespace {

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

OperationResult DoPing(Session& session) {
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

OperationResult DoDisconnect(Session& session) {
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

OperationResult DoStop(Session& session) {
  return InWords(Ask(session, [](auto& object, auto& given) { given.number = object.StopWatch(); }),
                 0, "the watcher is stopped", "the watcher could not be stopped");
}

OperationResult DoAbort(Session& session) {
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

OperationResult RunOperation(Session& session, const Operation& operation) {
  switch (operation.verb) {
    case Verb::kIp:
      return DoIp(session, operation);
    case Verb::kPing:
      return DoPing(session);
    case Verb::kDisconnect:
      return DoDisconnect(session);
    case Verb::kUnpair:
      return DoUnpair(session, operation);
    case Verb::kWatch:
      return DoWatch(session, operation);
    case Verb::kStop:
      return DoStop(session);
    case Verb::kAbort:
      return DoAbort(session);
    case Verb::kSleep:
      return DoSleep(session, operation);
  }
  return {};
}

}  // namespace lanvoss::program
