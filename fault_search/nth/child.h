// Plays a story again and again in a process of its own, so that a run that crashes or hangs is
// found like any other.
#pragma once

#include <string>
#include <vector>

#include "own_folder.h"
#include "world.h"

namespace lanvoss::nth {

class Child {
 public:
  // The results for the first step, the second and so on, up to the first run that does not reach
  // its step, or in which something does not hold.
  std::vector<Result> Play(World::Story story, const Plan& plan) const;
  // What the latest run wrote.
  std::string Log() const;

 private:
  [[noreturn]] void Run(World::Story story, Plan plan, int resultPipe) const;

  const test::OwnFolder folder_;  // for the cache file and the log
};

}  // namespace lanvoss::nth
