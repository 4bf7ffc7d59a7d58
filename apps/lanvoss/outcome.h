// The outcome of a run of the program.
#pragma once

#include <string>

#include "json_object.h"

namespace lanvoss::program {

inline constexpr int kExitOk = 0;
inline constexpr int kExitNotFound = 1;  // the device was not found
inline constexpr int kExitUsage = 2;     // bad arguments, a bad operation or a bad file
inline constexpr int kExitPlatform = 3;  // the platform failed
inline constexpr int kExitDeadLink = 4;  // a link was lost and could not be opened again
inline constexpr int kExitPairingFailed = 5;
inline constexpr int kExitNoAddress = 6;  // found, and no pairing failed, but no link
inline constexpr int kExitAborted = 130;  // as shells report the interrupt signal

struct Outcome {
  int exitCode = kExitOk;
  std::string result = {};     // for standard output, with its line ends
  std::string complaint = {};  // one line for standard error
  JsonObject facts = {};
};

}  // namespace lanvoss::program
