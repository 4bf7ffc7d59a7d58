// A simulated neighbourhood from a JSON file:
//
//   {"seed": 1,
//    "habits": {"enumeration_ms": 2000, "on_close": "reported"},
//    "peers": [{"name": "Cam-7F21", "pair_ms": 1200, "openings": ["none"],
//               "script": [{"at_ms": 5000, "do": "rename", "to": "Cam-2"}]}]}
//
// The keys are the fields of Habits, Peer and ScriptStep, whose defaults hold where a
// key is left out; only a peer's name and a step's "do" must be there. Durations are whole
// milliseconds or "never". What a file says beyond that is refused, not ignored.
#pragma once

#include <string>

#include "backends/simulated/scenario.h"
#include "backends/simulated/scenario_file/scenario_error.h"

namespace lanvoss::simulated {

// Both throw ScenarioError.
Scenario LoadScenario(const std::string& file);
// `file` is the name for messages.
Scenario ParseScenario(const std::string& text, const std::string& file);

}  // namespace lanvoss::simulated
