// Plays a story again and again in a process of its own, so that a run that crashes or hangs is
// found like any other.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "world.h"

namespace lanvoss::nth {

class Child {
 public:
  Child();
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // The results for the first step, the second and so on, up to the first run that does not reach
  // its step, or in which something does not hold.
  std::vector<Result> Play(World::Story story, const Plan& plan) const;
  // What the latest run wrote.
  std::string Log() const;

 private:
  [[noreturn]] void Run(World::Story story, Plan plan, int resultPipe) const;

  const std::filesystem::path directory_;  // of the cache file and the log
};

}  // namespace lanvoss::nth
