// Lines from standard input.
#pragma once

#include <optional>
#include <stop_token>
#include <string>

namespace lanvoss::program {

class LineReader {
 public:
  // The next line, without its line end. None: the input has ended or `interrupted` is requested.
  std::optional<std::string> Next(const std::stop_token& interrupted);

 private:
  bool ReadMore(const std::stop_token& interrupted);

  std::string unread_;
};

}  // namespace lanvoss::program
