// What is wrong with a scenario file.
#pragma once

#include <stdexcept>

namespace lanvoss::simulated {

// Tells in one line what is wrong and where: "home.json:7: ..." for what is not JSON, otherwise
// "home.json: peers[1].pair_ms: ...".
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace lanvoss::simulated
