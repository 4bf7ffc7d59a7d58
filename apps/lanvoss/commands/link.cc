#include "commands/link.h"

namespace lanvoss::program {
namespace {

constexpr int kAsks = 2;

// The statuses with which the device is paired.
bool IsPaired(const std::string& status) { return status == "Paired" || status == "AlreadyPaired"; }

Outcome Explain(const OperationStatus& status, const std::string& name) {
  if (!status.error.empty()) {
    return {kExitPlatform, {}, "no link to " + name + ": the platform says " + status.error};
  }
  if (!status.isFound) {
    return {kExitNotFound, {}, name + " was not found"};
  }
  if (status.isPairing) {
    return {kExitPairingFailed, {}, "the pairing with " + name + " did not end"};
  }
  if (!status.pairingStatus.empty() && !IsPaired(status.pairingStatus)) {
    return {kExitPairingFailed,
            {},
            name + " was not paired: the platform says " + status.pairingStatus};
  }
  return {kExitNoAddress, {}, name + " was found, but no link to it came up"};
}

}  // namespace

LinkCheck CheckLink(Session& session) {
  const OperationScope scope(session);
  const std::string addresses = session.Object().PingCheck();
  const OperationStatus status = session.Status();
  return {status.replies, status.isRecovery, addresses};
}

std::string AskForAddresses(Session& session, const std::string& name) {
  const OperationScope scope(session);
  std::string addresses;
  for (int ask = 0; ask < kAsks && addresses.empty() && !session.IsInterrupted(); ++ask) {
    addresses = session.Object().GetDeviceIp(name);
  }
  return addresses;
}

JsonObject LinkFacts(const std::string& name, const std::string& addresses) {
  const auto comma = addresses.find(',');
  return JsonObject()
      .AddText("name", name)
      .AddText("local", addresses.substr(0, comma))
      .AddText("remote", addresses.substr(comma + 1));
}

Outcome ExplainNoLink(const Session& session, const std::string& name) {
  Outcome outcome = Explain(session.Status(), name);
  outcome.facts.AddText("name", name);
  return outcome;
}

}  // namespace lanvoss::program
