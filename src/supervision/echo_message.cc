#include "supervision/echo_message.h"

#include <algorithm>

namespace lanvoss {
namespace {

// Where the fields are, in an ICMP message and in an IPv4 header.
constexpr std::size_t kTypeAt = 0;
constexpr std::size_t kChecksumAt = 2;
constexpr std::size_t kIdentifierAt = 4;
constexpr std::size_t kSequenceAt = 6;
constexpr std::size_t kSourceAddressAt = 12;

using Bytes = std::span<const std::uint8_t>;

// What follows the IPv4 header: an ICMP message with a whole header, or nothing.
Bytes IcmpMessage(Bytes datagram) {
  if (datagram.empty()) {
    return {};
  }
  const std::size_t headerLength = std::size_t{4} * (datagram[0] & 0x0FU);
  if (datagram.size() < headerLength + kIcmpHeaderLength) {
    return {};
  }
  return datagram.subspan(headerLength);
}

bool HasNumbers(Bytes message, const EchoReply& expected) {
  return std::ranges::equal(message.subspan(kIdentifierAt, 2), expected.identifier) &&
         std::ranges::equal(message.subspan(kSequenceAt, 2), expected.sequence);
}

}  // namespace

EchoReply ExpectReply(std::uint32_t processId, std::uint16_t sequence) {
  const auto byte = [](std::uint32_t value) { return static_cast<std::uint8_t>(value & 0xFFU); };
  return {.identifier = {byte(processId), byte(processId >> 8)},
          .sequence = {byte(sequence >> 8U), byte(sequence)}};
}

EchoRequest MakeEchoRequest(const EchoReply& expected) {
  EchoRequest request{};
  request[kTypeAt] = kEchoRequestType;
  std::ranges::copy(expected.identifier, request.begin() + kIdentifierAt);
  std::ranges::copy(expected.sequence, request.begin() + kSequenceAt);
  std::fill(request.begin() + kIcmpHeaderLength, request.end(), kEchoDataByte);
  const std::uint16_t checksum = InternetChecksum(request);
  request[kChecksumAt] = static_cast<std::uint8_t>(checksum & 0xFFU);
  request[kChecksumAt + 1] = static_cast<std::uint8_t>(checksum >> 8U);
  return request;
}

std::uint16_t InternetChecksum(std::span<const std::uint8_t> bytes) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const std::uint32_t high = i + 1 < bytes.size() ? bytes[i + 1] : 0;
    sum += bytes[i] | (high << 8U);
  }
  sum = (sum >> 16U) + (sum & 0xFFFFU);
  sum += sum >> 16U;
  return static_cast<std::uint16_t>(~sum & 0xFFFFU);
}

bool DecodeEchoReply(std::span<const std::uint8_t> datagram, EchoReply& expected,
                     std::uint8_t replyType, std::uint8_t timeExceededType) {
  Bytes message = IcmpMessage(datagram);
  if (!message.empty() && message[kTypeAt] == timeExceededType) {
    // It quotes the datagram that has run out of time; that may be cut short.
    message = IcmpMessage(message.subspan(kIcmpHeaderLength));
  } else if (!message.empty() && message[kTypeAt] != replyType) {
    return false;
  }
  if (message.empty() || !HasNumbers(message, expected)) {
    return false;
  }
  // A header length below 20 claims an address that is not in the header; still it is in the
  // datagram, or the datagram is refused.
  if (datagram.size() < kSourceAddressAt + expected.source.size()) {
    return false;
  }
  std::ranges::copy(datagram.subspan(kSourceAddressAt, expected.source.size()),
                    expected.source.begin());
  return true;
}

}  // namespace lanvoss
