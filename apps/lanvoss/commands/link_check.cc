#include "commands/link_check.h"

#include <mutex>

#include "console.h"
#include "log_line.h"
#include "platform/platform.h"
#include "raw_sockets.h"
#include "situation.h"

namespace lanvoss::program {
namespace {

constexpr int kAsks = 2;

// Asked of a platform of its own, since the object keeps what it stands on to itself.
bool CanSendEchoes() { return platform::CreatePlatform().system->OpenIcmpSocket() != nullptr; }

void ComplainWithoutRight() {
  if (!CanSendEchoes()) {
    Complain("no right to open raw sockets, so no device seems to answer; " +
             HowToAllowRawSockets());
  }
}

}  // namespace

void HearProbe(const Notification& notification) {
  if (notification.kind == "info" && Understand(notification.message).step == Step::kProbing) {
    static std::once_flag complained;
    std::call_once(complained, ComplainWithoutRight);
  }
}

LinkCheck CheckLink(LanvossInterface& object) {
  const UnderWay underWay;
  const std::string addresses = object.PingCheck();
  const Situation situation = TheSituation();
  return {situation.replies, situation.isRecovery, addresses};
}

std::string AskForAddresses(LanvossInterface& object, const std::string& name,
                            const std::stop_token& interrupted) {
  const UnderWay underWay;
  std::string addresses;
  for (int ask = 0; ask < kAsks && addresses.empty() && !interrupted.stop_requested(); ++ask) {
    addresses = object.GetDeviceIp(name);
  }
  return addresses;
}

}  // namespace lanvoss::program
