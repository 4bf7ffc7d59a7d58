// Standard output, redirected into a file, so that the printed lines can be compared with the
// notifications.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

#include "own_folder.h"

namespace lanvoss::search {

// One for the whole program.
class Output {
 public:
  Output();
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // What was printed since the last call.
  std::string Take();
  // A directory for this program alone, also for cache files.
  const std::filesystem::path& Directory() const { return directory_.path; }

 private:
  const test::OwnFolder directory_;
  const int original_;
  const int file_;
};

Output& TheOutput();
// The original standard output.
void Say(const std::string& line);

}  // namespace lanvoss::search
