// What `lanvoss run` and the shell do one after the other on one object, as it is written for them:
// a word, and what it takes. A NAME is the rest of the text, blanks inside included.
#pragma once

#include <cstdint>
#include <optional>
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
  std::string request = {};  // what the library is given
  std::int32_t sleepMs = 0;
};

struct OperationResult {
  std::string text;
  Outcome noLink = {};  // of an address request that gave no address
};

class OperationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// `place` stands before the message of the OperationError that is thrown for what is no operation:
// "operation 2: ...".
Operation ParseOperation(std::string_view text, const std::string& place);

// An interrupt ends a `sleep` early.
OperationResult RunOperation(Session& session, const Operation& operation);

// Whether a line of input is none: blank, or a comment that begins with #.
bool IsComment(std::string_view line);

// What they are, for people, an operation a line.
std::string OperationHelp();

// The words that operations begin with.
std::vector<std::string> OperationWords();

// The texts that the library takes its requests in: of GetDeviceIp and of StartWatch.
std::string IpRequest(const std::string& name, std::optional<std::int32_t> gapMs, bool direct);
std::string WatchRequest(const std::string& name, bool keep);

}  // namespace lanvoss::program
