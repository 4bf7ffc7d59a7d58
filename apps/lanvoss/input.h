// What arrives from standard input or a pipe.
#pragma once

#include <memory>
#include <string>

#include "wake_up.h"

namespace lanvoss::program {

inline constexpr int kStandardInput = 0;

// A thread of its own reads the file, one piece ahead, because not every system can wait for input
// and for something else at once. That thread ends with the input, or with the process.
class Input {
 public:
  enum class State { kMore, kNoneYet, kEnd };

  // Each piece and the end of the input wake `arrived`.
  Input(int file, std::shared_ptr<WakeUp> arrived);

  // Appends what has arrived to `text`. Does not wait.
  State Take(std::string& text);

 private:
  struct Shared;
  std::shared_ptr<Shared> shared_;
};

}  // namespace lanvoss::program
