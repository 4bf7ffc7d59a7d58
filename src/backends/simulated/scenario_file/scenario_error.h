// What is wrong with a scenario file.
#pragma once

#include <stdexcept>

namespace lanvoss::simulated {

// Says in one line where and what is wrong: "home.json:7: ..." for text that is not JSON, otherwise
// "home.json: peers[1].pair_ms: ...".
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace lanvoss::simulated
