#include "commands/link.h"

#include <chrono>
#include <optional>

#include "radio.h"
#include "screen.h"
#include "session.h"

namespace lanvoss::program {
namespace {

int ExitCodeOf(const lanvoss::Outcome& outcome) {
  switch (outcome.reason) {
    case Reason::kNone:
      return kExitOk;
    case Reason::kNotFound:
      return kExitNotFound;
    case Reason::kPairingFailed:
      return kExitPairingFailed;
    case Reason::kTimedOut:
      return outcome.step == Step::kSearch    ? kExitNotFound
             : outcome.step == Step::kPairing ? kExitPairingFailed
                                              : kExitNoAddress;
    case Reason::kOpenFailed:
    case Reason::kNoAddress:
    case Reason::kGivenUp:
      return kExitNoAddress;
    case Reason::kPlatformError:
    case Reason::kBusy:
    case Reason::kNotClosed:
      return kExitPlatform;
    case Reason::kDisconnected:
    case Reason::kSilent:
      return kExitDeadLink;
  }
  return kExitPlatform;
}

// "; in range: Cam-7F21, Cam-90A4"
std::string InRange(const lanvoss::Outcome& outcome) {
  std::string text;
  for (const std::string& name : outcome.inRange) {
    text += (text.empty() ? "; in range: " : ", ") + Printable(name);
  }
  return text;
}

void AddTime(JsonObject& times, const char* name,
             const std::optional<std::chrono::milliseconds>& time) {
  if (time) {
    times.AddNumber(name, static_cast<int>(time->count()));
  }
}

}  // namespace

std::string AddressesOf(const Link& link) { return link.local + "," + link.remote; }

JsonObject LinkFacts(const Link& link) {
  return JsonObject()
      .AddText("name", link.name)
      .AddText("local", link.local)
      .AddText("remote", link.remote);
}

JsonObject AttemptFacts(const std::string& name, const lanvoss::Outcome& outcome) {
  JsonObject facts = outcome.link ? LinkFacts(*outcome.link) : JsonObject().AddText("name", name);
  if (!outcome) {
    facts.AddText("reason", NameOf(outcome.reason)).AddText("help", HelpPage(outcome.reason));
  }
  if (!outcome.words.empty()) {
    facts.AddText("status", outcome.words);
  }
  JsonObject times;
  AddTime(times, "search", outcome.times.search);
  AddTime(times, "pairing", outcome.times.pairing);
  AddTime(times, "opening", outcome.times.opening);
  AddTime(times, "total", outcome.times.total);
  return facts.AddObject("times_ms", times);
}

Outcome ToOutcome(const std::string& name, const lanvoss::Outcome& outcome) {
  Outcome result = {.exitCode = ExitCodeOf(outcome), .facts = AttemptFacts(name, outcome)};
  if (outcome) {
    result.result = AddressesOf(*outcome.link) + "\n";
  } else {
    result.complaint = Explain(outcome, name);
    if (outcome.step == Step::kSearch) {
      result.complaint += InRange(outcome);
    }
  }
  return result;
}

std::string ObstacleToProbe(const Session& session, const Link& link) {
  if (link.remote.find(':') != std::string::npos) {
    return "the remote address " + link.remote + " is not IPv4, and only IPv4 can be probed";
  }
  return session.CanProbe() ? std::string()
                            : "no right to open raw sockets; fix: " + HowToAllowRawSockets();
}

}  // namespace lanvoss::program
