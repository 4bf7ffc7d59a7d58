#include "results.h"

#include "clock.h"
#include "console.h"
#include "texts.h"

namespace lanvoss::program {
namespace {

// A text that is none in its encoding gets replacement characters.
void PrintObject(const Facts& object) {
  constexpr int kOneLine = -1;
  Print(object.dump(kOneLine, ' ', false, Facts::error_handler_t::replace) + "\n");
}

}  // namespace

void PrintNotification(const Notification& notification) {
  PrintObject({{"time", FormatTime(notification.timeUs)},
               {"thread", notification.thread},
               {"kind", notification.kind},
               {"message", ToUtf8(notification.message)}});
}

void PrintResult(const CommandLine& line, const std::string& text, const Facts& facts) {
  if (!line.json) {
    Print(text);
    return;
  }
  Facts object = {
      {"time", FormatTime(LocalTimeUs())}, {"kind", "result"}, {"command", line.commandName}};
  object.update(facts);
  PrintObject(object);
}

int Report(const CommandLine& line, Outcome outcome) {
  Facts facts = {{"exit", outcome.exitCode}};
  facts.update(outcome.facts);
  if (!outcome.complaint.empty()) {
    facts["complaint"] = ToUtf8(outcome.complaint);
  }
  PrintResult(line, outcome.result, facts);
  if (!outcome.complaint.empty()) {
    Complain(outcome.complaint);
  }
  CloseConsole();
  return outcome.exitCode;
}

}  // namespace lanvoss::program
