// One conversation with a control interface of wpa_supplicant: datagrams of text on a UNIX socket.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lanvoss::wpa {

class ControlSocket {
 public:
  // `path`: the socket of the interface. Raises platform::Error when nothing answers there, or when
  // this user has no right to use it.
  explicit ControlSocket(const std::string& path);
  ~ControlSocket();
  ControlSocket(const ControlSocket&) = delete;
  ControlSocket& operator=(const ControlSocket&) = delete;

  // Raises platform::Error when wpa_supplicant is gone.
  void Send(std::string_view text);
  // The next datagram. None: nothing came within `timeoutMs`, or `wake` became readable (-1: there
  // is none).
  std::optional<std::string> Receive(std::uint32_t timeoutMs, int wake = -1);

 private:
  const std::string path_;
  const int socket_;
};

// Sends a command to the control socket at `path` and returns the reply. Blocks for kReplyMs at
// most. Raises platform::Error when no reply comes. Each command has its own socket, so that no
// thread waits for the reply to another.
std::string Ask(const std::string& path, std::string_view command);

}  // namespace lanvoss::wpa
