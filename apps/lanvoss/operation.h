// One operation of a sequence, as it is written for `lanvoss run`:
//
//   ip [--gap MS | --direct] NAME     ping                    watch [[--keep] NAME]
//   unpair NAME                       disconnect              stop
//   sleep MS                          abort
//
// A NAME is the rest of the text, blanks inside included.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lanvoss::program {

struct Operation {
  enum class Kind { kIp, kPing, kDisconnect, kUnpair, kAbort, kWatch, kStop, kSleep };
  Kind kind = Kind::kPing;
  std::string text = {};     // as it was written, without blanks around it
  std::string request = {};  // of kIp, kUnpair and kWatch: what the library is given
  std::int32_t sleepMs = 0;  // of kSleep
};

class OperationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// `place` stands before the message of the OperationError that is thrown for what is no operation:
// "operation 2: ...".
Operation ParseOperation(std::string_view text, const std::string& place);

// Whether a line of input is none: blank, or a comment that begins with #.
bool IsComment(std::string_view line);

// What they are, for people, an operation a line.
inline constexpr char kOperationHelp[] =
    "  ip [--gap MS | --direct] NAME  find, pair and connect; the result is LOCAL,REMOTE\n"
    "  ping                           probe the link, and pair and connect a silent device anew\n"
    "  disconnect                     close the link\n"
    "  unpair NAME                    start to remove the pairing\n"
    "  watch [[--keep] NAME]          start to look for devices\n"
    "  stop                           stop looking\n"
    "  abort                          give the attempt up\n"
    "  sleep MS                       wait\n";

// The words that operations begin with.
std::vector<std::string> OperationWords();

}  // namespace lanvoss::program
