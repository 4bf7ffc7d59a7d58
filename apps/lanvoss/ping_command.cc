#include "ping_command.h"

#include <string>

#include "link_check.h"

namespace lanvoss::program {
namespace {

// An attempt may take the end of the link before for a wish to give up; the next one does not.
constexpr int kAsks = 2;

// The addresses of the link to `name` after a check; empty when it is dead.
std::string AddressesAfterCheck(LanvossInterface& object, const std::string& name,
                                const std::stop_token& interrupted) {
  std::string addresses;
  for (int ask = 0; ask < kAsks && addresses.empty() && !interrupted.stop_requested(); ++ask) {
    addresses = object.GetDeviceIp(name);
  }
  return addresses;
}

// What the check came to, given that there is a link after it.
std::string Finding(const LinkCheck& check, const std::string& name) {
  if (!check.replies) {
    return name + " was not probed: its link had no remote address";
  }
  if (*check.replies > 0) {
    return name + " answered, replies: " + std::to_string(*check.replies);
  }
  return name + " did not answer; " + (check.recovery ? "paired and " : "") + "connected anew";
}

}  // namespace

Outcome RunPing(LanvossInterface& object, const CommandLine& line, std::stop_token interrupted) {
  const std::string& name = *line.name;
  if (object.GetDeviceIp(name).empty()) {
    return {kExitNotFound, {}, "no link to " + name};
  }
  const LinkCheck check = CheckLink(object);
  const std::string addresses = AddressesAfterCheck(object, name, interrupted);
  if (addresses.empty()) {
    return {kExitDeadLink, {}, "dead link: " + name + " could not be connected anew"};
  }
  return {kExitOk, Finding(check, name) + "\n" + addresses + "\n"};
}

}  // namespace lanvoss::program
