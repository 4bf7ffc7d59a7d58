#include "commands/disconnect.h"

#include "commands/no_link.h"
#include "request.h"
#include "situation.h"

namespace lanvoss::program {
namespace {

constexpr std::int32_t kLinkGone = 1;  // of DisConnect

}  // namespace

Outcome RunDisconnect(LanvossInterface& object, const CommandLine& line) {
  const std::string& name = *line.name;
  const UnderWay underWay;
  if (object.GetDeviceIp(IpRequest(name, std::nullopt, true)).empty()) {
    return NoLink(name);
  }
  const Facts facts = Facts().AddText("name", name);
  if (object.DisConnect("") != kLinkGone) {
    return {kExitPlatform, {}, "the platform did not let the link to " + name + " go", facts};
  }
  return {.result = "the link to " + name + " is closed\n", .facts = facts};
}

}  // namespace lanvoss::program
