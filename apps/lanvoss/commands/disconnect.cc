#include "commands/link.h"
#include "commands/table.h"

namespace lanvoss::program {

// Never pairs or connects: no link is a success. The links of this process end with it, so what can
// be there is what a killed one has left.
Outcome RunDisconnect(Session& session) {
  const std::string& name = *session.Line().name;
  const Radio& radio = session.TheRadio();
  if (!radio.remark.empty()) {
    session.Output().Complain(radio.remark);
  }
  const bool isClosed = CloseLeftOverLinks(radio, name);
  return {.result = isClosed ? "the link to " + name + " is closed\n"
                             : "there is no link to " + name + "\n",
          .facts = JsonObject().AddText("name", name).AddFlag("closed", isClosed)};
}

}  // namespace lanvoss::program
