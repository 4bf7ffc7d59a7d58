// Simulated devices from a JSON file (docs/scenarios.md has all keys):
//
//   {"seed": 1,
//    "habits": {"enumeration_ms": 2000, "on_close": "reported"},
//    "peers": [{"name": "Cam-7F21", "pair_ms": 1200, "openings": ["none"],
//               "script": [{"at_ms": 5000, "do": "rename", "to": "Cam-2"}]}]}
//
// The keys are the fields of Habits, Peer and ScriptStep. A key that is left out has the default of
// its field; only a peer's name and a step's "do" are required. Durations are whole milliseconds or
// "never". An unknown key is an error.
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
