#include "link_check.h"

#include <mutex>
#include <string_view>
#include <utility>

#include "console.h"
#include "platform/platform.h"
#include "raw_sockets.h"

namespace lanvoss::program {
namespace {

// The library's log lines that tell how a check goes.
constexpr std::string_view kProbing = "(watch) ping ...";
constexpr std::string_view kProbed = "(watch) ping done ret:";  // and the number of replies
constexpr std::string_view kSilent = "(watch) Ping Failed,";    // and what is done about it
constexpr std::string_view kGivenUp = "(watch) Ping Failed,Re Pair Failed!";

// The library writes these lines on the thread that checks.
thread_local LinkCheck heard;

// Asked of a platform of its own, since the object keeps what it stands on to itself.
bool CanSendEchoes() { return platform::CreatePlatform().system->OpenIcmpSocket() != nullptr; }

void ComplainWithoutRight() {
  if (!CanSendEchoes()) {
    Complain("no right to open raw sockets, so no device seems to answer; " +
             HowToAllowRawSockets());
  }
}

}  // namespace

void HearCheck(std::string kind, std::string message) {
  if (kind != "info") {
    return;
  }
  if (message == kProbing) {
    static std::once_flag complained;
    std::call_once(complained, ComplainWithoutRight);
  } else if (message.starts_with(kProbed)) {
    heard.replies = std::stoi(message.substr(kProbed.size()));
  } else if (message.starts_with(kSilent)) {
    heard.recovery = !message.starts_with(kGivenUp);
  }
}

LinkCheck CheckLink(LanvossInterface& object) {
  heard = {};
  std::string addresses = object.PingCheck();
  heard.addresses = std::move(addresses);
  return heard;
}

}  // namespace lanvoss::program
