#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "commands/link.h"
#include "commands/table.h"
#include "echo.h"

namespace lanvoss::program {
namespace {

using std::chrono::microseconds;

// "8.1"
std::string MillisecondsText(microseconds time) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.1f", static_cast<double>(time.count()) / 1000.0);
  return text.data();
}

// The round-trip times of the replies, each shown as it comes.
std::vector<microseconds> Probe(Session& session, const std::string& remote) {
  std::vector<microseconds> times;
  for (int number = 1; number <= kEchoRequests && !session.IsInterrupted(); ++number) {
    const auto time = AskForEcho(session.System(), remote, number);
    if (time) {
      times.push_back(*time);
    }
    if (!session.Line().json && !session.Line().quiet) {
      session.Output().Print(
          std::to_string(number) +
          (time ? ": reply from " + remote + " after " + MillisecondsText(*time) + " ms\n"
                : ": no reply from " + remote + " within 3 s\n"));
    }
  }
  return times;
}

JsonObject ProbeFacts(const std::vector<microseconds>& times) {
  std::vector<std::string> texts;
  texts.reserve(times.size());
  for (const microseconds time : times) {
    texts.push_back(MillisecondsText(time));
  }
  return JsonObject()
      .AddNumber("replies", static_cast<int>(times.size()))
      .AddNumbers("round_trips_ms", texts);
}

std::string Summary(const std::string& name, const std::vector<microseconds>& times) {
  const auto [least, most] = std::ranges::minmax(times);
  return name + " answered " + std::to_string(times.size()) + " of " +
         std::to_string(kEchoRequests) + ", in " + MillisecondsText(least) + " to " +
         MillisecondsText(most) + " ms\n";
}

// The library probes again, unpairs, pairs and connects.
Outcome Recover(Session& session, const std::string& name) {
  session.Library().Check();
  Outcome outcome =
      ToOutcome(name, session.Library().Connect(name, ConnectOptionsOf(session.Line())));
  if (outcome.exitCode == kExitOk) {
    outcome.result = name + " did not answer; paired and connected again\n" + outcome.result;
  } else {
    outcome.exitCode = kExitDeadLink;
    outcome.complaint = "dead link: " + outcome.complaint;
  }
  outcome.facts.AddNumber("replies", 0).AddFlag("recovery", true);
  return outcome;
}

}  // namespace

void AddPingOptions(CLI::App& command, CommandLine& line) {
  AddNameOption(command, line);
  AddTimeoutOption(command, line);
  command.add_flag("--recover", line.recover,
                   "Pair and connect a device again that does not answer");
}

Outcome RunPing(Session& session) {
  const CommandLine& line = session.Line();
  const std::string& name = *line.name;
  const lanvoss::Outcome request = session.Library().Connect(name, ConnectOptionsOf(line));
  if (!request) {
    return ToOutcome(name, request);
  }
  const JsonObject facts = AttemptFacts(name, request);
  if (const std::string obstacle = ObstacleToProbe(session, *request.link); !obstacle.empty()) {
    return {kExitPlatform, {}, name + " was not probed: " + obstacle, facts};
  }
  const std::vector<microseconds> times = Probe(session, request.link->remote);
  if (!times.empty()) {
    return {.result = Summary(name, times) + AddressesOf(*request.link) + "\n",
            .facts = JsonObject(facts).AddAll(ProbeFacts(times))};
  }
  if (line.recover && !session.IsInterrupted()) {
    return Recover(session, name);
  }
  return {kExitDeadLink,
          {},
          name + " does not answer; --recover pairs and connects it again",
          JsonObject(facts).AddAll(ProbeFacts(times))};
}

}  // namespace lanvoss::program
