#include "backends/simulated/echo.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/system_over.h"

namespace lanvoss::simulated {
namespace {

using Bytes = std::vector<std::uint8_t>;
using BytesView = std::span<const std::uint8_t>;
using platform::Ipv4Address;

constexpr std::size_t kIpHeaderLength = 20;
constexpr std::size_t kIcmpHeaderLength = 8;
constexpr std::uint8_t kEchoReply = 0;
constexpr std::uint8_t kUnreachable = 3;
constexpr std::uint8_t kEchoRequest = 8;
constexpr std::uint8_t kTimeExceeded = 11;
constexpr std::size_t kTooLongLength = 1'025;
constexpr Ipv4Address kStranger = {10, 99, 99, 99};

// A valid ICMP message sums up to all ones, its checksum included.
bool IsChecksumRight(BytesView message) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i + 1 < message.size(); i += 2) {
    sum += static_cast<std::uint32_t>(message[i] << 8 | message[i + 1]);
  }
  while (sum >> 16 != 0) {
    sum = (sum & 0xFFFF) + (sum >> 16);
  }
  return sum == 0xFFFF;
}

// An IPv4 datagram without options.
Bytes Datagram(const Ipv4Address& source, const Bytes& message) {
  Bytes datagram(kIpHeaderLength + message.size());
  datagram[0] = 0x45;  // version 4, five words of header
  datagram[9] = 1;     // ICMP
  std::ranges::copy(source, datagram.begin() + 12);
  std::ranges::copy(message, datagram.begin() + kIpHeaderLength);
  return datagram;
}

Bytes TimeExceeded(const Ipv4Address& source, BytesView request, std::size_t quotedLength) {
  Bytes message(kIcmpHeaderLength + quotedLength);
  message[0] = kTimeExceeded;
  const Bytes quoted = Datagram({}, Bytes(request.begin(), request.end()));
  std::copy_n(quoted.begin(), quotedLength, message.begin() + kIcmpHeaderLength);
  return Datagram(source, message);
}

// What comes back for `request` from the device at `device`.
Bytes Answer(Echo echo, const Ipv4Address& device, BytesView request) {
  constexpr std::size_t kQuoted = kIpHeaderLength + kIcmpHeaderLength;
  Bytes reply(request.begin(), request.end());
  reply[0] = kEchoReply;
  switch (echo) {
    case Echo::kReply:
    case Echo::kLateReply:
      break;
    case Echo::kOtherIdentifier:
      reply[4] ^= 0xFF;
      break;
    case Echo::kOtherSequence:
      reply[7] ^= 0xFF;
      break;
    case Echo::kOtherAddress:
      return Datagram(kStranger, reply);
    case Echo::kTimeExceeded:
      return TimeExceeded(kStranger, request, kQuoted);
    case Echo::kTimeExceededSelf:
      return TimeExceeded(device, request, kQuoted);
    case Echo::kTimeExceededCut:
      return TimeExceeded(device, request, kQuoted - 3);
    case Echo::kTruncated:
      reply.resize(kIcmpHeaderLength - 1);
      break;
    case Echo::kUnrelated:
      reply[0] = kUnreachable;
      break;
    case Echo::kTooLong:
      reply.resize(kTooLongLength);
      break;
  }
  return Datagram(device, reply);
}

// The datagrams that have arrived at one socket. Shared with those that are on their way.
struct Mailbox {
  explicit Mailbox(platform::System& system) : filled(system.CreateManualResetEvent(false)) {}

  void Put(Bytes datagram) {
    const std::lock_guard lock(mutex);
    datagrams.push_back(std::move(datagram));
    filled->Set();
  }

  const std::unique_ptr<platform::Event> filled;
  std::mutex mutex;
  std::deque<Bytes> datagrams;  // guarded by the mutex
};

class SimulatedIcmpSocket final : public platform::IcmpSocket {
 public:
  explicit SimulatedIcmpSocket(std::shared_ptr<AirState> air)
      : air_(std::move(air)), mailbox_(std::make_shared<Mailbox>(*air_->system)) {}

  void SetTimeouts(std::uint32_t receiveMs, std::uint32_t /*sendMs*/) override {
    receiveMs_ = receiveMs;
  }
  void SetTimeToLive(int /*hops*/) override {}

  void Send(const Ipv4Address& destination, BytesView message) override {
    // A network drops what is not a well-formed request.
    if (message.size() < kIcmpHeaderLength || message[0] != kEchoRequest ||
        !IsChecksumRight(message)) {
      return;
    }
    const auto [echoes, delayMs] = air_->EchoesFrom(destination);
    for (const Echo echo : echoes) {
      const std::uint32_t lateMs = echo == Echo::kLateReply ? kLateMs : 0;
      air_->delayedActions.After(delayMs + lateMs,
                                 [mailbox = mailbox_, answer = Answer(echo, destination, message)] {
                                   mailbox->Put(answer);
                                 });
    }
  }

  platform::Received Receive(std::span<std::uint8_t> buffer) override {
    using Outcome = platform::Received::Outcome;
    if (!mailbox_->filled->Wait(receiveMs_)) {
      return {Outcome::kTimedOut};
    }
    const std::lock_guard lock(mailbox_->mutex);
    const Bytes datagram = std::move(mailbox_->datagrams.front());
    mailbox_->datagrams.pop_front();
    if (mailbox_->datagrams.empty()) {
      mailbox_->filled->Reset();
    }
    if (datagram.size() > buffer.size()) {
      return {Outcome::kFailed};
    }
    std::ranges::copy(datagram, buffer.begin());
    return {Outcome::kDatagram, datagram.size()};
  }

 private:
  const std::shared_ptr<AirState> air_;
  const std::shared_ptr<Mailbox> mailbox_;
  std::uint32_t receiveMs_ = platform::kWaitForever;
};

class EchoSystem final : public platform::SystemOver {
 public:
  EchoSystem(std::shared_ptr<platform::System> beneath, std::shared_ptr<AirState> air)
      : SystemOver(std::move(beneath)), air_(std::move(air)) {}

  std::unique_ptr<platform::IcmpSocket> OpenIcmpSocket() override {
    if (!air_->CurrentHabits().simulatesEcho) {
      return SystemOver::OpenIcmpSocket();
    }
    if (!air_->faults.Enter(Call::kOpenIcmpSocket)) {
      return nullptr;
    }
    return std::make_unique<SimulatedIcmpSocket>(air_);
  }

  platform::File OpenFile(const std::string& path, platform::FileUse use) override {
    return air_->faults.Enter(Call::kOpenFile) ? SystemOver::OpenFile(path, use) : nullptr;
  }

 private:
  const std::shared_ptr<AirState> air_;
};

}  // namespace

std::shared_ptr<platform::System> WithEcho(std::shared_ptr<platform::System> beneath,
                                           std::shared_ptr<AirState> air) {
  return std::make_shared<EchoSystem>(std::move(beneath), std::move(air));
}

}  // namespace lanvoss::simulated
