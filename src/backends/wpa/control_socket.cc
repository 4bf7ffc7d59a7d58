#include "backends/wpa/control_socket.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

#include "backends/wpa/limits.h"
#include "platform/error.h"

namespace lanvoss::wpa {
namespace {

// The longest reply of wpa_supplicant.
constexpr std::size_t kLongestDatagram = 8192;

[[noreturn]] void Raise(const std::string& path) {
  const std::string text = "wpa_supplicant at " + path + ": " + std::strerror(errno);
  throw platform::Error(platform::kErrorFail, platform::Utf8ToUtf16(text));
}

}  // namespace

ControlSocket::ControlSocket(const std::string& path)
    : path_(path), socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
  // An address that the kernel makes, which leaves no file behind.
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
  errno = error;
  Raise(path_);
}

ControlSocket::~ControlSocket() { close(socket_); }

void ControlSocket::Send(std::string_view text) {
  if (send(socket_, text.data(), text.size(), MSG_NOSIGNAL) < 0) {
    Raise(path_);
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
    errno = ETIMEDOUT;
    Raise(path);
  }
  return *std::move(reply);
}

}  // namespace lanvoss::wpa
