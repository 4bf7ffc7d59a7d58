// What the library has told, kept for the picture of it.
#pragma once

#include <string>

#include "notification.h"

namespace lanvoss::program {

// A listener. Keeps the latest kRecordedNotifications.
void Record(const Notification& notification);

// Draws what was recorded, if anything was. Throws a std::runtime_error when the file cannot be
// written.
void SaveRecording(const std::string& file);

}  // namespace lanvoss::program
