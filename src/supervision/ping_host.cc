// The ICMP echo probe.
#include "supervision/ping_host.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <span>

#include "base/limits.h"
#include "supervision/echo_message.h"

namespace lanvoss {
namespace {

constexpr int kEchoTimeToLive = 64;  // hops
constexpr std::size_t kReceiveBufferLength = 1024;

// These two are in GBK, whatever the encoding of the host's other output.
// "The IP address or host name is not valid."
constexpr char kNoSuchHostText[] =
    "\xCA\xE4\xC8\xEB\xB5\xC4"
    "IP\xB5\xD8\xD6\xB7\xBB\xF2\xD3\xF2\xC3\xFB\xCE\xDE\xD0\xA7\n";
// "The request timed out."
constexpr char kTimedOutText[] = "\xC7\xEB\xC7\xF3\xB3\xAC\xCA\xB1\xA1\xA3\n";

void Print(const char* text) {
  std::fputs(text, stdout);
  std::fflush(stdout);
}

// Receives until the expected reply arrives from `destination` or nothing comes for a time-out.
// Whatever else arrives (other processes' replies, late ones, other types) starts a fresh wait.
bool ReplyArrives(platform::IcmpSocket& socket, std::span<std::uint8_t> buffer,
                  const platform::Ipv4Address& destination, EchoReply& expected,
                  const std::function<void()>& beforeReceive) {
  using Outcome = platform::Received::Outcome;
  while (true) {
    beforeReceive();
    const platform::Received received = socket.Receive(buffer);
    if (received.outcome == Outcome::kTimedOut) {
      Print(kTimedOutText);
    }
    if (received.outcome != Outcome::kDatagram) {
      return false;
    }
    if (DecodeEchoReply(buffer.first(received.length), expected, kEchoReplyType,
                        kTimeExceededType) &&
        expected.source == destination) {
      return true;
    }
  }
}

}  // namespace

int PingHost(platform::System& system, const std::string& host,
             const std::function<void()>& beforeReceive) {
  const auto destination = system.ResolveHost(host);
  if (!destination) {
    Print(kNoSuchHostText);
    return 0;
  }
  const auto socket = system.OpenIcmpSocket();
  if (socket == nullptr) {
    return 0;
  }
  socket->SetTimeouts(kEchoTimeoutMs, kEchoTimeoutMs);

  const std::uint32_t processId = system.ProcessId();
  std::array<std::uint8_t, kReceiveBufferLength> buffer{};
  int replies = 0;
  for (std::uint16_t sequence = 0; sequence < kEchoTries; ++sequence) {
    socket->SetTimeToLive(kEchoTimeToLive);
    EchoReply expected = ExpectReply(processId, sequence);
    socket->Send(*destination, MakeEchoRequest(expected));
    if (ReplyArrives(*socket, buffer, *destination, expected, beforeReceive)) {
      ++replies;
    }
  }
  return replies;
}

}  // namespace lanvoss
