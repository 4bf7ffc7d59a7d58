// Lines from standard input.
#pragma once

#include <optional>
#include <string>

#include "input.h"
#include "session.h"

namespace lanvoss::program {

class LineReader {
 public:
  explicit LineReader(Session& session);

  // The next line, without its line end. None: the input has ended, or it was interrupted.
  std::optional<std::string> Next();

 private:
  bool ReadMore();

  Session& session_;
  Input input_;
  std::string unread_;
};

}  // namespace lanvoss::program
