// The operations of a host, as texts: of `lanvoss run`, of the shell, and of test files. Each is a
// word and its arguments. A NAME is the rest of the text and may contain blanks.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lanvoss::play {

enum class Verb { kIp, kPing, kDisconnect, kUnpair, kWatch, kStop, kAbort, kSleep };

struct Operation {
  Verb verb = Verb::kStop;
  std::string text = {};     // as it was written, without blanks around it
  std::string request = {};  // for the library
  std::int32_t sleepMs = 0;
};

class OperationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws OperationError for a text that is no operation. Its message begins with `place`:
// "operation 2: ...".
Operation ParseOperation(std::string_view text, const std::string& place);

// Whether a line of input is blank or a comment, which begins with #.
bool IsComment(std::string_view line);

// A help text with one operation per line.
std::string OperationHelp();

// The first words of all operations.
std::vector<std::string> OperationWords();

}  // namespace lanvoss::play
