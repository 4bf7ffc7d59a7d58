#include "commands/no_link.h"

#include "situation.h"

namespace lanvoss::program {
namespace {

// The statuses of a pairing that has made, or found, a pair.
bool IsPaired(const std::string& status) { return status == "Paired" || status == "AlreadyPaired"; }

Outcome Tell(const std::string& name) {
  const Situation situation = TheSituation();
  if (!situation.error.empty()) {
    return {kExitPlatform, {}, "no link to " + name + ": the platform says " + situation.error};
  }
  if (!situation.isFound) {
    return {kExitNotFound, {}, name + " was not found"};
  }
  if (situation.isPairing) {
    return {kExitPairingFailed, {}, "the pairing with " + name + " did not end"};
  }
  if (!situation.pairingStatus.empty() && !IsPaired(situation.pairingStatus)) {
    return {kExitPairingFailed,
            {},
            name + " was not paired: the platform says " + situation.pairingStatus};
  }
  return {kExitNoAddress, {}, name + " was found, but no link to it came up"};
}

}  // namespace

Outcome NoLink(const std::string& name) {
  Outcome outcome = Tell(name);
  outcome.facts.AddText("name", name);
  return outcome;
}

}  // namespace lanvoss::program
