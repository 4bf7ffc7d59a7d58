// The device at the other end: a camera with its own supplicant and network.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "backends/wpa/control_socket.h"
#include "backends/wpa/message.h"

namespace lanvoss::test {

// Whether it is so, or becomes so within 20 s.
bool Await(const std::function<bool()>& isSo);

class Camera {
 public:
  // Fresh from the factory, and switched on. `radio`: its network interface.
  explicit Camera(std::string radio);
  ~Camera() { Kill(); }
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  void SwitchOn();
  void Kill();  // without leaving its groups first

  // ---- What it does when it is asked to pair. By default the host owns the group.
  void Answer();
  void KeepSilent();
  void Reject();  // the host, which must notice it within seconds
  void EndRejection();
  void OwnTheGroup();

  void Rename(const std::string& name);
  void ForgetCredentials();
  void ServeAddresses();  // in the groups that it owns, by DHCP and not in the handshake
  void GiveAddressesOf(const std::string& network);  // the same in the handshake; three numbers
  void InviteTheHost();                              // into the group of the first pairing
  void DropEchoes();                                 // until there is a new link

  // ---- What has happened to it
  std::size_t Count(const std::string& event);
  std::string Log();
  void ForgetLog();
  bool HasAddress();
  // Its IP address in the group that it is in; empty if it gets none.
  std::string Address();

 private:
  void Live();
  void React(const wpa::Message& message);
  void Enter(const std::string& group, const wpa::Message& started);
  bool Do(const std::string& command);
  void SetAddress(const std::string& address);

  const std::string radio_;
  std::thread life_;
  std::atomic<bool> on_ = false;
  std::atomic<bool> serves_ = false;
  std::atomic<const char*> ownerIntent_;  // null: it does not answer

  std::mutex asking_;  // guards the socket
  std::unique_ptr<wpa::ControlSocket> commands_;

  std::mutex mutex_;  // guards everything below
  std::string address_;
  std::string log_;
};

}  // namespace lanvoss::test
