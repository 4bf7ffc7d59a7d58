// The operations that `lanvoss run` and the shell run one after the other on one object. Each is a
// word and its arguments. A NAME is the rest of the text and may contain blanks.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "outcome.h"

namespace lanvoss::program {

class Session;
struct OperationKind;

struct Operation {
  const OperationKind* kind = nullptr;
  std::string text = {};     // as it was written, without blanks around it
  std::string request = {};  // for the library
  std::int32_t sleepMs = 0;
};

struct OperationResult {
  std::string text;      // for scripts
  std::string words;     // for people
  Outcome failure = {};  // of an address request that gave no address, or an error
};

class OperationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws OperationError for a text that is no operation. Its message begins with `place`:
// "operation 2: ...".
Operation ParseOperation(std::string_view text, const std::string& place);

// An interrupt ends it early.
OperationResult RunOperation(Session& session, const Operation& operation);

// Whether a line of input is blank or a comment, which begins with #.
bool IsComment(std::string_view line);

// A help text with one operation per line.
std::string OperationHelp();

// The first words of all operations.
std::vector<std::string> OperationWords();

}  // namespace lanvoss::program
