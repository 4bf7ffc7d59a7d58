#include "backends/wpa/control_socket.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

#include "backends/wpa/descriptor.h"
#include "backends/wpa/fail.h"
#include "backends/wpa/limits.h"

namespace lanvoss::wpa {
namespace {

// The longest reply of wpa_supplicant.
constexpr std::size_t kLongestDatagram = 8192;

[[noreturn]] void FailAt(const std::string& path, int error) {
  Fail("wpa_supplicant at " + path, error);
}

// The socket of a path, held so that nobody can exchange it.
class HeldSocket {
 public:
  explicit HeldSocket(const std::string& path)
      : file_(open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)) {}
  ~HeldSocket() { close(file_); }
  HeldSocket(const HeldSocket&) = delete;
  HeldSocket& operator=(const HeldSocket&) = delete;

  // 0, or an errno.
  int Problem() const {
    struct stat status {};
    if (file_ < 0 || fstat(file_, &status) != 0) {
      return errno;
    }
    if (!S_ISSOCK(status.st_mode)) {
      return ENOTSOCK;
    }
    return status.st_uid == 0 || status.st_uid == geteuid() ? 0 : EPERM;
  }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(file_); }

 private:
  const int file_;
};

}  // namespace

ControlSocket::ControlSocket(const std::string& path)
    : path_(path), socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
  try {
    Connect();
  } catch (...) {
    close(socket_);
    throw;
  }
}

ControlSocket::~ControlSocket() { close(socket_); }

// Connected before it has an address, so that only the peer can ever send to it. The kernel makes
// the address, so no file remains.
void ControlSocket::Connect() {
  if (socket_ < 0) {
    FailAt(path_, errno);
  }
  const HeldSocket held(path_);
  if (const int problem = held.Problem(); problem != 0) {
    FailAt(path_, problem);
  }
  sockaddr_un own{.sun_family = AF_UNIX, .sun_path = {}};
  sockaddr_un peer = own;
  held.Path().copy(peer.sun_path, sizeof peer.sun_path - 1);
  if (connect(socket_, reinterpret_cast<sockaddr*>(&peer), sizeof peer) != 0 ||
      bind(socket_, reinterpret_cast<sockaddr*>(&own), offsetof(sockaddr_un, sun_path)) != 0) {
    FailAt(path_, errno);
  }
}

void ControlSocket::Send(std::string_view text, std::uint32_t timeoutMs, int wake) {
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  while (send(socket_, text.data(), text.size(), MSG_NOSIGNAL) < 0) {
    if (errno != EAGAIN) {
      FailAt(path_, errno);
    }
    if (!WaitFor(socket_, POLLOUT, deadline, wake)) {
      FailAt(path_, ETIMEDOUT);
    }
  }
}

std::optional<std::string> ControlSocket::Receive(std::uint32_t timeoutMs, int wake) {
  if (!WaitFor(socket_, POLLIN, Clock::now() + std::chrono::milliseconds(timeoutMs), wake)) {
    return std::nullopt;
  }
  std::string text(kLongestDatagram, '\0');
  const ssize_t length = recv(socket_, text.data(), text.size(), 0);
  if (length < 0) {
    return std::nullopt;
  }
  text.resize(static_cast<std::size_t>(length));
  return text;
}

std::string Ask(const std::string& path, std::string_view command) {
  using std::chrono::milliseconds;
  const auto deadline = std::chrono::steady_clock::now() + milliseconds(kReplyMs);
  ControlSocket conversation(path);
  conversation.Send(command, kReplyMs);
  const auto left = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
  const auto leftMs = static_cast<std::uint32_t>(std::max<std::int64_t>(left.count(), 0));
  auto reply = conversation.Receive(leftMs);
  if (!reply) {
    FailAt(path, ETIMEDOUT);
  }
  return *std::move(reply);
}

}  // namespace lanvoss::wpa
