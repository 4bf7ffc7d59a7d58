// Results on standard output: text for people, or with --json an object a line.
#pragma once

#include <string>

#include "command_line.h"
#include "notification.h"
#include "outcome.h"

namespace lanvoss::program {

// A listener for --json: {"time": ..., "thread": 1, "kind": "watch", "message": "Cam-7F21"}.
void PrintNotification(const Notification& notification);

// One result, as text or as {"time": ..., "kind": "result", "command": "keep", ...facts}.
void PrintResult(const CommandLine& line, const std::string& text, const Facts& facts);

// The last words of a run: what it came to, and where that is wanted a picture of it. Returns the
// exit code. The console is closed with it.
int Report(const CommandLine& line, Outcome outcome);

}  // namespace lanvoss::program
