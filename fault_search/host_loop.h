// What the loop of a host (check, then ask for the address) has to look at in the log.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace lanvoss {

inline bool HasLine(const std::vector<std::string>& log, std::string_view part) {
  return std::any_of(log.begin(), log.end(), [part](const std::string& line) {
    return line.find(part) != std::string::npos;
  });
}

// Whether the check that logged this found the link dead and did not recover it. Such a link would
// be returned again and again, so the host closes it before it asks.
inline bool IsDeadAndKept(const std::vector<std::string>& log) {
  return HasLine(log, "(watch) ping done ret:0 ") && !HasLine(log, "Re Pair... ");
}

// Whether the platform failed in the request that logged this and gave no address. The device may
// have forgotten its pairing, so the host unpairs it before it asks again.
inline bool IsPlatformFailing(const std::vector<std::string>& log) {
  return HasLine(log, "ConnDevice Err:");
}

}  // namespace lanvoss
