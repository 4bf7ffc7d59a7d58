#include "backends/wpa/control_socket.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

#include "backends/wpa/fail.h"
#include "backends/wpa/limits.h"

namespace lanvoss::wpa {
namespace {

// The longest reply of wpa_supplicant.
constexpr std::size_t kLongestDatagram = 8192;

[[noreturn]] void FailAt(const std::string& path, int error) {
  Fail("wpa_supplicant at " + path, error);
}

}  // namespace

ControlSocket::ControlSocket(const std::string& path)
    : path_(path), socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
  // The kernel makes the address, so no file remains.
  sockaddr_un own{.sun_family = AF_UNIX, .sun_path = {}};
  sockaddr_un peer = own;
  if (path.size() >= sizeof peer.sun_path) {
    errno = ENAMETOOLONG;
  } else {
    path.copy(peer.sun_path, path.size());
    if (bind(socket_, reinterpret_cast<sockaddr*>(&own), offsetof(sockaddr_un, sun_path)) == 0 &&
        connect(socket_, reinterpret_cast<sockaddr*>(&peer), sizeof peer) == 0) {
      return;
    }
  }
  const int error = errno;
  close(socket_);
  FailAt(path_, error);
}

ControlSocket::~ControlSocket() { close(socket_); }

void ControlSocket::Send(std::string_view text) {
  if (send(socket_, text.data(), text.size(), MSG_NOSIGNAL) < 0) {
    FailAt(path_, errno);
  }
}

std::optional<std::string> ControlSocket::Receive(std::uint32_t timeoutMs, int wake) {
  std::array<pollfd, 2> readable{pollfd{socket_, POLLIN, 0}, pollfd{wake, POLLIN, 0}};
  if (poll(readable.data(), readable.size(), static_cast<int>(timeoutMs)) <= 0 ||
      readable[0].revents == 0) {
    return std::nullopt;
  }
  std::string text(kLongestDatagram, '\0');
  const ssize_t length = recv(socket_, text.data(), text.size(), MSG_DONTWAIT);
  if (length < 0) {
    return std::nullopt;
  }
  text.resize(static_cast<std::size_t>(length));
  return text;
}

std::string Ask(const std::string& path, std::string_view command) {
  ControlSocket conversation(path);
  conversation.Send(command);
  auto reply = conversation.Receive(kReplyMs);
  if (!reply) {
    FailAt(path, ETIMEDOUT);
  }
  return *std::move(reply);
}

}  // namespace lanvoss::wpa
