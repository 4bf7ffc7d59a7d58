#include "results.h"

#include <stdexcept>

#include "clock.h"
#include "console.h"
#include "recording.h"

namespace lanvoss::program {
namespace {

void PrintObject(const Facts& object) { Print(object.Json() + "\n"); }

void Draw(const std::string& file) {
  try {
    SaveRecording(file);
  } catch (const std::runtime_error& error) {
    Complain(error.what());
  }
}

}  // namespace

void PrintNotification(const Notification& notification) {
  PrintObject(Facts()
                  .AddText("time", FormatTime(notification.timeUs))
                  .AddNumber("thread", notification.thread)
                  .AddText("kind", notification.kind)
                  .AddText("message", notification.message));
}

void PrintResult(const CommandLine& line, const std::string& text, const Facts& facts) {
  if (!line.json) {
    Print(text);
    return;
  }
  PrintObject(Facts()
                  .AddText("time", FormatTime(LocalTimeUs()))
                  .AddText("kind", "result")
                  .AddText("command", line.commandName)
                  .AddAll(facts));
}

int Report(const CommandLine& line, Outcome outcome) {
  if (line.timelineFile && line.command != Command::kTimeline) {
    Draw(*line.timelineFile);
  }
  outcome.facts.AddNumber("exit", outcome.exitCode);
  if (!outcome.complaint.empty()) {
    outcome.facts.AddText("complaint", outcome.complaint);
  }
  PrintResult(line, outcome.result, outcome.facts);
  if (!outcome.complaint.empty()) {
    Complain(outcome.complaint);
  }
  CloseConsole();
  return outcome.exitCode;
}

}  // namespace lanvoss::program
