// One conversation with a control interface of wpa_supplicant: datagrams of text on a UNIX socket.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lanvoss::wpa {

class ControlSocket {
 public:
  // `path`: the socket of the interface. Raises platform::Error when nothing answers there, when
  // this user has no right to use it, or when it belongs neither to root nor to this user: another
  // user may have put it there.
  explicit ControlSocket(const std::string& path);
  ~ControlSocket();
  ControlSocket(const ControlSocket&) = delete;
  ControlSocket& operator=(const ControlSocket&) = delete;

  // Both block for `timeoutMs` at most, and end when `wake` becomes readable (-1: there is none).
  // A signal does not change how long they block.
  //
  // Raises platform::Error when wpa_supplicant is gone or does not read.
  void Send(std::string_view text, std::uint32_t timeoutMs, int wake = -1);
  // The next datagram. None: nothing came in time.
  std::optional<std::string> Receive(std::uint32_t timeoutMs, int wake = -1);

 private:
  using Clock = std::chrono::steady_clock;

  void Connect();

  const std::string path_;
  const int socket_;
};

// Sends a command to the control socket at `path` and returns the reply. Blocks for kReplyMs at
// most. Raises platform::Error when no reply comes. Each command has its own socket, so that no
// thread waits for the reply to another.
std::string Ask(const std::string& path, std::string_view command);

}  // namespace lanvoss::wpa
