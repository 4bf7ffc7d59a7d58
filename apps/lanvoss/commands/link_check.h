// A check of the link, with what only the log tells of it.
#pragma once

#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "lanvoss/lanvoss.h"

#include "notifications.h"
#include "platform/system.h"

namespace lanvoss::program {

struct LinkCheck {
  std::optional<int> replies = {};  // none: there was no remote address to probe
  bool recovery = false;            // the device was silent, and a recovery was begun
  std::string addresses = {};       // of the link that the recovery opened
};

// A listener that complains, once, when the first probe begins without the right to probe.
Listener ComplainOfProbesIn(std::shared_ptr<platform::System> system);

LinkCheck CheckLink(LanvossInterface& object);

// The addresses of the link to `name`; it is made when there is none. Asks once more after an empty
// answer: an attempt may take the end of the link before it for a wish to give up.
std::string AskForAddresses(LanvossInterface& object, const std::string& name,
                            const std::stop_token& interrupted);

}  // namespace lanvoss::program
