// A search, for the commands that need one.
#pragma once

#include <string>

#include "outcome.h"
#include "session.h"

namespace lanvoss::program {

// Watches and returns when the watch has ended or an interrupt comes; the session's status says
// what was seen. False: the platform did not start its watcher.
bool Watch(Session& session, const std::string& request);

// What a command came to that could not watch.
Outcome NoWatch(const Session& session);

}  // namespace lanvoss::program
