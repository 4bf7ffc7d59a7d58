// The link to a device, with the facts that only the log has.
#pragma once

#include <optional>
#include <string>

#include "outcome.h"
#include "session.h"

namespace lanvoss::program {

struct LinkCheck {
  std::optional<int> replies = {};  // none: there was no remote address to probe
  bool recovery = false;            // the device was silent, and a recovery was begun
  std::string addresses = {};       // of the link that the recovery opened
};

LinkCheck CheckLink(Session& session);

// The addresses of the link to `name`, which is opened if there is none. Asks once more after an
// empty answer: the end of the old link can abort the new attempt.
std::string AskForAddresses(Session& session, const std::string& name);

// The address text of a link, "LOCAL,REMOTE", for --json.
JsonObject LinkFacts(const std::string& name, const std::string& addresses);

// The outcome of an address request that gave no address: how far the attempt got.
Outcome ExplainNoLink(const Session& session, const std::string& name);

}  // namespace lanvoss::program
