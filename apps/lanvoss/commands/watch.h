// A search, for the commands that need one.
#pragma once

#include <string>

#include "outcome.h"
#include "session.h"

namespace lanvoss::program {

// Returns when the watch has ended, or after an interrupt. The session's status says what was seen.
// False: the platform did not start its watcher.
bool Watch(Session& session, const std::string& request);

// The outcome of a command that could not watch.
Outcome NoWatch(const Session& session);

}  // namespace lanvoss::program
