#include "ip_command.h"

#include <string>

#include "request.h"

namespace lanvoss::program {

Outcome RunIp(LanvossInterface& object, const CommandLine& line) {
  const std::string addresses = object.GetDeviceIp(IpRequest(*line.name, line.gapMs, line.direct));
  if (addresses.empty()) {
    return {kExitNotFound, {}, "no link to " + *line.name};
  }
  return {kExitOk, addresses + "\n"};
}

}  // namespace lanvoss::program
