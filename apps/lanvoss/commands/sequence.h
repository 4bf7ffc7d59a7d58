// Operations one after the other on one object.
#pragma once

#include <stop_token>
#include <string>

#include "lanvoss/lanvoss.h"

#include "operation.h"
#include "outcome.h"

namespace lanvoss::program {

class Sequence {
 public:
  explicit Sequence(LanvossInterface& object) : object_(object) {}

  // Does it and returns its result. A `sleep` ends early when `interrupted` is requested.
  std::string Do(const Operation& operation, const std::stop_token& interrupted);

  // What all of them came to: the latest link that did not come up, if any.
  const Outcome& End() const { return end_; }

 private:
  std::string Ip(const std::string& request);

  LanvossInterface& object_;
  Outcome end_;
};

}  // namespace lanvoss::program
