#include "commands/link.h"
#include "commands/table.h"

namespace lanvoss::program {
namespace {

constexpr std::int32_t kLinkGone = 1;  // of DisConnect

}  // namespace

// Another program may have left the link open.
Outcome RunDisconnect(Session& session) {
  const std::string& name = *session.Line().name;
  const OperationScope scope(session);
  if (session.Object().GetDeviceIp(IpRequest(name, std::nullopt, true)).empty()) {
    return ExplainNoLink(session, name);
  }
  const JsonObject facts = JsonObject().AddText("name", name);
  if (session.Object().DisConnect("") != kLinkGone) {
    return {kExitPlatform, {}, "the platform did not close the link to " + name, facts};
  }
  return {.result = "the link to " + name + " is closed\n", .facts = facts};
}

}  // namespace lanvoss::program
