// A log that the program has printed earlier.
#pragma once

#include <string_view>
#include <vector>

#include "log/notification.h"

namespace lanvoss::log {

// The notifications in `text`, from lines of two forms: "[2026-11-23 07:52:45.123] TEXT" as the
// library prints them, and objects of the program's --json, which also have threads and kinds.
// Other lines (results, diagnostics without a time, broken ones) are skipped.
// Throws a std::runtime_error when there is no notification at all.
std::vector<Notification> ReadSavedLog(std::string_view text);

}  // namespace lanvoss::log
