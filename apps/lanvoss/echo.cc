#include "echo.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "supervision/echo_message.h"

namespace lanvoss::program {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kReplyTime(3000);
constexpr std::size_t kLongestDatagram = 1024;

// The numbers of the library's own requests begin at 0.
constexpr int kFirstSequence = 0x4000;

std::uint32_t MillisecondsUntil(Clock::time_point end) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
  return static_cast<std::uint32_t>(std::max<std::int64_t>(left.count(), 1));
}

}  // namespace

std::optional<std::chrono::microseconds> AskForEcho(platform::System& system,
                                                    const std::string& address, int number) {
  const auto destination = system.ResolveHost(address);
  const auto socket = system.OpenIcmpSocket();
  if (!destination || socket == nullptr) {
    return std::nullopt;
  }
  EchoReply expected =
      ExpectReply(system.ProcessId(), static_cast<std::uint16_t>(kFirstSequence + number));
  const Clock::time_point begun = Clock::now();
  const Clock::time_point end = begun + kReplyTime;
  const auto time = static_cast<std::uint32_t>(kReplyTime.count());
  socket->SetTimeouts(time, time);
  socket->Send(*destination, MakeEchoRequest(expected));
  std::array<std::uint8_t, kLongestDatagram> buffer{};
  while (Clock::now() < end) {
    socket->SetTimeouts(MillisecondsUntil(end), time);
    const platform::Received received = socket->Receive(buffer);
    if (received.outcome == platform::Received::Outcome::kDatagram &&
        DecodeEchoReply(std::span(buffer).first(received.length), expected, kEchoReplyType,
                        kTimeExceededType) &&
        expected.source == *destination) {
      return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begun);
    }
  }
  return std::nullopt;
}

}  // namespace lanvoss::program
