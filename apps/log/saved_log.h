// A log that was written earlier, by the library, by this program, or by a host with its own
// logger.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "log/notification.h"

namespace lanvoss::log {

struct SavedLog {
  // One for each line that was understood. A line without a time has the time of the line before
  // it; all have 0 if no line has one.
  std::vector<Notification> notifications = {};
  std::size_t lines = 0;    // that are not blank
  std::size_t unclear = 0;  // not understood, although the library has written something in them
};

// Each line of `text` may have a message of the library: after anything that a host, a service
// manager or the library itself writes before it, or as a text of a JSON object. Objects of this
// program's --json also have threads and kinds. `text` is UTF-8, or UTF-16 with a byte order mark.
// Throws a std::runtime_error when no line is understood.
SavedLog ReadSavedLog(std::string_view text);

}  // namespace lanvoss::log
