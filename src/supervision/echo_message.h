// ICMP echo messages as they are on the wire. Pure functions.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/system.h"

namespace lanvoss {

inline constexpr std::uint8_t kEchoReplyType = 0;
inline constexpr std::uint8_t kEchoRequestType = 8;
inline constexpr std::uint8_t kTimeExceededType = 11;

inline constexpr std::size_t kIcmpHeaderLength = 8;
inline constexpr std::size_t kEchoDataLength = 32;
inline constexpr std::uint8_t kEchoDataByte = 'E';

using EchoRequest = std::array<std::uint8_t, kIcmpHeaderLength + kEchoDataLength>;

// What ties a reply to its request. Both numbers are kept as the two bytes on the wire.
struct EchoReply {
  std::array<std::uint8_t, 2> identifier{};  // the process id's low byte first
  std::array<std::uint8_t, 2> sequence{};    // the high byte first
  platform::Ipv4Address source{};            // filled in by DecodeEchoReply
};

// Who asks (the low 16 bits of the process id) and which try it is.
EchoReply ExpectReply(std::uint32_t processId, std::uint16_t sequence);
// The request that such a reply answers, with its checksum.
EchoRequest MakeEchoRequest(const EchoReply& expected);

// The Internet checksum (RFC 1071). Its low byte belongs first into the message.
std::uint16_t InternetChecksum(std::span<const std::uint8_t> bytes);

// Whether a received IPv4 datagram is an echo reply with the expected numbers, or a time-exceeded
// message that quotes the request with them; if so, takes its source address.
bool DecodeEchoReply(std::span<const std::uint8_t> datagram, EchoReply& expected,
                     std::uint8_t replyType, std::uint8_t timeExceededType);

}  // namespace lanvoss
