// A log as a member of a report.
#pragma once

#include <string>
#include <vector>

#include "log/notification.h"

namespace lanvoss::report {

// The notifications as lines that log::ReadSavedLog reads: as the library prints them, and as
// --json does where there is more to say.
std::string LogText(const std::vector<log::Notification>& notifications);

// The picture of what happened.
std::string Picture(const std::vector<log::Notification>& notifications);

}  // namespace lanvoss::report
