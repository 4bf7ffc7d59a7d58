// What the client says of a link, as outcomes of the program.
#pragma once

#include <string>

#include "lanvoss/client.h"

#include "outcome.h"

namespace lanvoss::program {

class Session;

// A link, for people and for --json.
std::string AddressesOf(const Link& link);
JsonObject LinkFacts(const Link& link);

// The reason with the platform's words, and how long each step took.
JsonObject AttemptFacts(const std::string& name, const lanvoss::Outcome& outcome);

// The outcome of a request for a link.
Outcome ToOutcome(const std::string& name, const lanvoss::Outcome& outcome);

// Why the link cannot be probed, so that a check would unpair a healthy device; empty: it can.
std::string ObstacleToProbe(const Session& session, const Link& link);

}  // namespace lanvoss::program
