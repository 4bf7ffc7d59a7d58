// The library's messages in the lines of any log.
#pragma once

#include <optional>
#include <string_view>

namespace lanvoss::log {

// The message in a line: after whatever a host, a service manager or the library itself writes
// before it, and to the end of the line. None: there is no message that is known.
std::optional<std::string_view> FindMessage(std::string_view line);

}  // namespace lanvoss::log
