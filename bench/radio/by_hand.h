// The same links made by hand: commands and events of wpa_supplicant, and nothing around them.
#pragma once

#include <functional>
#include <string>

#include "backends/wpa/control_socket.h"
#include "backends/wpa/message.h"

namespace lanvoss::bench {

class ByHand {
 public:
  ByHand();

  // Each ends when the device has its address. `find`: the command that looks for the device.
  void Pair(const std::string& find, const std::string& device);
  void FindAndInvite(const std::string& find, const std::string& device);
  void Invite(const std::string& device);
  void Remove();

 private:
  void Do(const std::string& command);
  wpa::Message Await(const std::function<bool(const wpa::Message&)>& isIt);
  void Find(const std::string& find, const std::string& device);
  void AwaitDevice(const std::string& device);

  wpa::ControlSocket events_;
  std::string interface_;
};

}  // namespace lanvoss::bench
