// The texts that the library takes its requests in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace lanvoss::program {

// For GetDeviceIp.
inline std::string IpRequest(const std::string& name, std::optional<std::int32_t> gapMs,
                             bool direct) {
  if (gapMs) {
    return std::to_string(*gapMs) + "\n" + name;
  }
  return direct ? "\n" + name : name;
}

// For StartWatch.
inline std::string WatchRequest(const std::string& name, bool keep) {
  return keep ? "\n" + name : name;
}

}  // namespace lanvoss::program
