// One notification of the library, with its time and thread.
#pragma once

#include <cstdint>
#include <string>

#include "lanvoss/client/log_line.h"

namespace lanvoss::log {

struct Notification {
  std::int64_t timeUs = 0;  // local time, from 1970-01-01 00:00 of local time
  int thread = 0;           // from 1 in the order of their first notification; 0: not known
  std::string kind;
  std::string message;
};

inline LogLine ParseLogLine(const Notification& notification) {
  return notification.kind == "info" ? ParseLogLine(notification.message)
                                     : UnknownLine(notification.message);
}

}  // namespace lanvoss::log
