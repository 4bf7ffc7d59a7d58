// The name service's IPv4 calls do all that is needed; the newer ones only add IPv6.
#define _WINSOCK_DEPRECATED_NO_WARNINGS
#include "backends/windows/icmp_socket.h"

#include <cstring>
#include <utility>
#include <winsock2.h>
// After winsock2.h.
#include <ws2tcpip.h>

namespace lanvoss::windows {
namespace {

constexpr int kNoFlags = 0;
constexpr GROUP kNoGroup = 0;

// Winsock counts its users; it works while there is one.
class Winsock {
 public:
  Winsock() {
    WSADATA data{};
    static_cast<void>(WSAStartup(MAKEWORD(2, 2), &data));
  }
  ~Winsock() { WSACleanup(); }
  Winsock(const Winsock&) = delete;
  Winsock& operator=(const Winsock&) = delete;
};

class WindowsIcmpSocket final : public platform::IcmpSocket {
 public:
  WindowsIcmpSocket()
      : socket_(
            WSASocketW(AF_INET, SOCK_RAW, IPPROTO_ICMP, nullptr, kNoGroup, WSA_FLAG_OVERLAPPED)) {}
  ~WindowsIcmpSocket() override { closesocket(socket_); }
  WindowsIcmpSocket(const WindowsIcmpSocket&) = delete;
  WindowsIcmpSocket& operator=(const WindowsIcmpSocket&) = delete;

  bool IsOpen() const { return socket_ != INVALID_SOCKET; }

  void SetTimeouts(std::uint32_t receiveMs, std::uint32_t sendMs) override {
    SetOption(SOL_SOCKET, SO_RCVTIMEO, receiveMs);
    SetOption(SOL_SOCKET, SO_SNDTIMEO, sendMs);
  }

  void SetTimeToLive(int hops) override { SetOption(IPPROTO_IP, IP_TTL, static_cast<DWORD>(hops)); }

  void Send(const platform::Ipv4Address& destination,
            std::span<const std::uint8_t> message) override {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    std::memcpy(&address.sin_addr, destination.data(), destination.size());
    sendto(socket_, reinterpret_cast<const char*>(message.data()), static_cast<int>(message.size()),
           kNoFlags, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  }

  platform::Received Receive(std::span<std::uint8_t> buffer) override {
    using Outcome = platform::Received::Outcome;
    const int length = recvfrom(socket_, reinterpret_cast<char*>(buffer.data()),
                                static_cast<int>(buffer.size()), kNoFlags, nullptr, nullptr);
    if (length != SOCKET_ERROR) {
      return {Outcome::kDatagram, static_cast<std::size_t>(length)};
    }
    return {WSAGetLastError() == WSAETIMEDOUT ? Outcome::kTimedOut : Outcome::kFailed};
  }

 private:
  void SetOption(int level, int option, DWORD value) {
    setsockopt(socket_, level, option, reinterpret_cast<const char*>(&value), sizeof value);
  }

  const Winsock winsock_;
  const SOCKET socket_;
};

}  // namespace

std::optional<platform::Ipv4Address> ResolveHost(const std::string& host) {
  const Winsock winsock;
  platform::Ipv4Address address{};
  if (const unsigned long dotted = inet_addr(host.c_str()); dotted != INADDR_NONE) {
    std::memcpy(address.data(), &dotted, address.size());
    return address;
  }
  const hostent* found = gethostbyname(host.c_str());
  if (found == nullptr || found->h_addr_list[0] == nullptr) {
    return std::nullopt;
  }
  std::memcpy(address.data(), found->h_addr_list[0], address.size());
  return address;
}

std::unique_ptr<platform::IcmpSocket> OpenIcmpSocket() {
  auto socket = std::make_unique<WindowsIcmpSocket>();
  return socket->IsOpen() ? std::move(socket) : nullptr;
}

}  // namespace lanvoss::windows
