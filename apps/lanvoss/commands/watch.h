// lanvoss watch: the devices around, or one of them.
#pragma once

#include <stop_token>
#include <string>

#include "lanvoss/lanvoss.h"

#include "command_line.h"
#include "outcome.h"

namespace lanvoss::program {

// Watches and returns when the watch has ended or `interrupted` is requested; the situation tells
// what was seen. False: the platform did not start its watcher.
bool Watch(LanvossInterface& object, const std::string& request,
           const std::stop_token& interrupted);

// What a command came to that could not watch.
Outcome NoWatch();

Outcome RunWatch(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted);

}  // namespace lanvoss::program
