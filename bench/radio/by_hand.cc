#include "by_hand.h"

#include <cstdlib>
#include <iostream>

#include "backends/wpa/interface_address.h"
#include "backends/wpa/limits.h"

namespace lanvoss::bench {
namespace {

constexpr char kSocket[] = "/run/wpa_supplicant/p2p-dev-wlan0";
constexpr std::uint32_t kPatienceMs = 30'000;

[[noreturn]] void GiveUp(const std::string& what) {
  std::cerr << "by hand: " << what << "\n";
  std::exit(EXIT_FAILURE);
}

}  // namespace

ByHand::ByHand() : events_(kSocket) {
  events_.Send("ATTACH", kPatienceMs);
  events_.Receive(kPatienceMs);
}

void ByHand::Do(const std::string& command) {
  if (!wpa::Ask(kSocket, command).starts_with("OK")) {
    GiveUp(command + " is refused");
  }
}

wpa::Message ByHand::Await(const std::function<bool(const wpa::Message&)>& isIt) {
  while (const auto text = events_.Receive(kPatienceMs)) {
    if (auto message = wpa::ParseMessage(*text); isIt(message)) {
      return message;
    }
  }
  GiveUp("the event does not come");
}

void ByHand::Find(const std::string& find, const std::string& device) {
  Do(find);
  Await([&](const wpa::Message& message) {
    return message.name == "P2P-DEVICE-FOUND" && message.Field("p2p_dev_addr") == device;
  });
  Do("P2P_STOP_FIND");
}

void ByHand::AwaitDevice(const std::string& device) {
  interface_ = Await([](const wpa::Message& message) {
                 return message.name == "P2P-GROUP-STARTED";
               }).Word(0);
  wpa::SetInterfaceAddress(interface_, wpa::kOwnerAddress, wpa::kNetworkMask);
  Await([&](const wpa::Message& message) {
    return message.name == "AP-STA-CONNECTED" && message.Field("p2p_dev_addr") == device;
  });
}

void ByHand::Pair(const std::string& find, const std::string& device) {
  Find(find, device);
  Do("P2P_CONNECT " + device + " pbc persistent go_intent=14");
  AwaitDevice(device);
}

void ByHand::FindAndInvite(const std::string& find, const std::string& device) {
  Find(find, device);
  Invite(device);
}

void ByHand::Invite(const std::string& device) {
  Do("P2P_INVITE persistent=0 peer=" + device);
  AwaitDevice(device);
}

void ByHand::Remove() { Do("P2P_GROUP_REMOVE " + interface_); }

}  // namespace lanvoss::bench
