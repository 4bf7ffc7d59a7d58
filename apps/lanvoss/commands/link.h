// What the client says of a link, as outcomes of the program.
#pragma once

#include <string>

#include "lanvoss/client.h"

#include "outcome.h"

namespace lanvoss::program {

// A link, for people and for --json.
std::string AddressesOf(const Link& link);
JsonObject LinkFacts(const Link& link);

// The reason with the platform's words, and how long each step took.
JsonObject AttemptFacts(const std::string& name, const lanvoss::Outcome& outcome);

// The outcome of a request for a link.
Outcome ToOutcome(const std::string& name, const lanvoss::Outcome& outcome);

}  // namespace lanvoss::program
