#include "commands/link_check.h"

#include <mutex>
#include <utility>

#include "console.h"
#include "log_line.h"
#include "raw_sockets.h"
#include "situation.h"

namespace lanvoss::program {
namespace {

constexpr int kAsks = 2;

void ComplainWithoutRight(platform::System& system) {
  if (system.OpenIcmpSocket() == nullptr) {
    Complain("no right to open raw sockets, so no device seems to answer; " +
             HowToAllowRawSockets());
  }
}

}  // namespace

Listener ComplainOfProbesIn(std::shared_ptr<platform::System> system) {
  const auto complained = std::make_shared<std::once_flag>();
  return [system = std::move(system), complained](const Notification& notification) {
    if (notification.kind == "info" && Understand(notification.message).step == Step::kProbing) {
      std::call_once(*complained, ComplainWithoutRight, *system);
    }
  };
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
