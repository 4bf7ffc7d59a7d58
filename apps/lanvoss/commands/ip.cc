#include "commands/ip.h"

#include <string>

#include "commands/addresses.h"
#include "commands/no_link.h"
#include "request.h"
#include "situation.h"

namespace lanvoss::program {

Outcome RunIp(LanvossInterface& object, const CommandLine& line) {
  const std::string& name = *line.name;
  const UnderWay underWay;
  const std::string addresses = object.GetDeviceIp(IpRequest(name, line.gapMs, line.direct));
  if (addresses.empty()) {
    return NoLink(name);
  }
  return {.result = addresses + "\n", .facts = LinkFacts(name, addresses)};
}

}  // namespace lanvoss::program
