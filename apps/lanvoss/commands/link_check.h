// A check of the link, with what only the log tells of it.
#pragma once

#include <optional>
#include <stop_token>
#include <string>

#include "lanvoss/lanvoss.h"

#include "notification.h"

namespace lanvoss::program {

struct LinkCheck {
  std::optional<int> replies = {};  // none: there was no remote address to probe
  bool recovery = false;            // the device was silent, and a recovery was begun
  std::string addresses = {};       // of the link that the recovery opened
};

// A listener. Complains, once per run of the program, when the right to probe is missing.
void HearProbe(const Notification& notification);

LinkCheck CheckLink(LanvossInterface& object);

// The addresses of the link to `name`; it is made when there is none. Asks once more after an empty
// answer: an attempt may take the end of the link before it for a wish to give up.
std::string AskForAddresses(LanvossInterface& object, const std::string& name,
                            const std::stop_token& interrupted);

}  // namespace lanvoss::program
