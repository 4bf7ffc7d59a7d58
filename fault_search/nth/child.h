// Plays a script again and again in another process, so that a crash or a hang is found like any
// other failure.
#pragma once

#include <string>
#include <vector>

#include "nth_run.h"
#include "own_folder.h"

namespace lanvoss::nth {

class Child {
 public:
  // The results for the first step, the second and so on, up to the first run that does not reach
  // its step, or in which something does not hold.
  std::vector<Result> Play(NthRun::Script script, const Plan& plan) const;
  // What the latest run wrote.
  std::string Log() const;

 private:
  [[noreturn]] void Run(NthRun::Script script, Plan plan, int resultPipe) const;

  const test::OwnFolder folder_;  // for the cache file and the log
};

}  // namespace lanvoss::nth
