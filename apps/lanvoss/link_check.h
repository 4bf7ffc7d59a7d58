// A check of the link, with what only the log tells of it.
#pragma once

#include <optional>
#include <string>

#include "lanvoss/lanvoss.h"

namespace lanvoss::program {

struct LinkCheck {
  std::optional<int> replies = {};  // none: there was no remote address to probe
  bool recovery = false;            // the device was silent, and a recovery was begun
  std::string addresses = {};       // of the link that the recovery opened
};

// The host's function that the object of a check has to be made with.
void HearCheck(std::string kind, std::string message);

// Complains, once per run of the program, when the right to probe is missing.
LinkCheck CheckLink(LanvossInterface& object);

}  // namespace lanvoss::program
