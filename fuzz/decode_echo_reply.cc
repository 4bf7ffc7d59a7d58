// Any bytes at all as a received datagram: the decoder reads none beyond them, and what it accepts
// has the expected numbers where the header lengths say.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "require.h"
#include "supervision/echo_message.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t kProcessId = 0x1234;
constexpr std::uint16_t kSequence = 2;
// Identifier and sequence as they follow each other on the wire.
constexpr std::uint8_t kNumbers[] = {0x34, 0x12, 0x00, 0x02};
constexpr lanvoss::platform::Ipv4Address kUntouched = {1, 2, 3, 4};

// In bytes, from the low half of a header's first byte.
std::size_t HeaderLength(Bytes datagram) { return std::size_t{4} * (datagram[0] % 16); }

void CheckAccepted(Bytes datagram, const lanvoss::platform::Ipv4Address& source) {
  Require(datagram.size() >= 16, "the source address is in the datagram");
  Require(std::ranges::equal(datagram.subspan(12, 4), source), "the source address is taken");

  std::size_t at = HeaderLength(datagram);
  Require(at + 8 <= datagram.size(), "the message's header is in the datagram");
  if (datagram[at] == lanvoss::kTimeExceededType) {
    at += 8;
    Require(at < datagram.size(), "something is quoted");
    at += HeaderLength(datagram.subspan(at));
    Require(at + 8 <= datagram.size(), "the quoted message's header is in the datagram");
  } else {
    Require(datagram[at] == lanvoss::kEchoReplyType, "the message is an echo reply");
  }
  Require(std::ranges::equal(datagram.subspan(at + 4, 4), kNumbers), "the numbers are awaited");
}

}  // namespace

// The fuzzer passes each input in a heap buffer of its exact size.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes datagram(data, size);
  lanvoss::EchoReply expected = lanvoss::ExpectReply(kProcessId, kSequence);
  expected.source = kUntouched;
  if (lanvoss::DecodeEchoReply(datagram, expected, lanvoss::kEchoReplyType,
                               lanvoss::kTimeExceededType)) {
    CheckAccepted(datagram, expected.source);
  } else {
    Require(expected.source == kUntouched, "what is refused changes nothing");
  }
  return 0;
}
