// lanvoss shell: operations as they are typed.
#pragma once

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "interruption.h"
#include "notification.h"
#include "outcome.h"

namespace lanvoss::program {

// A listener: devices that a name can be completed to.
void HearNames(const Notification& notification);

// Ends with the input or with "exit". An interruption ends the operation that runs, not the shell.
Outcome RunShell(LanvossInterface& object, const CommandLine& line, Interruption& interruption);

}  // namespace lanvoss::program
