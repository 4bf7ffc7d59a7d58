// Echo messages on the wire, byte for byte.
#include "supervision/echo_message.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace lanvoss {
namespace {

using Bytes = std::vector<std::uint8_t>;

// An IPv4 datagram from 10.0.0.2 with a header of `words` 32-bit words.
Bytes Datagram(const Bytes& message, std::uint8_t words = 5) {
  Bytes bytes(words * 4U + message.size());
  bytes[0] = static_cast<std::uint8_t>(0x40 | words);
  const Bytes source{10, 0, 0, 2};
  std::copy(source.begin(), source.end(), bytes.begin() + 12);
  std::copy(message.begin(), message.end(), bytes.begin() + words * 4);
  return bytes;
}

bool Decodes(const Bytes& datagram, std::uint16_t sequence = 2) {
  EchoReply reply = ExpectReply(0x9ABCD, sequence);
  return DecodeEchoReply(datagram, reply, kEchoReplyType, kTimeExceededType) &&
         reply.source == platform::Ipv4Address{10, 0, 0, 2};
}

const Bytes kReply{0, 0, 0, 0, 0xCD, 0xAB, 0, 2};

TEST(EchoRequest, IsTheseFortyBytes) {
  const EchoRequest request = MakeEchoRequest(ExpectReply(0x9ABCD, 0x0102));
  // The sum of 16 words 0x4545, 0x0800, 0xCDAB and 0x0102 is 0x52AFD; folded 0x2B02.
  const Bytes header{8, 0, 0xD4, 0xFD, 0xCD, 0xAB, 0x01, 0x02};
  Bytes expected(40, 0x45);
  std::copy(header.begin(), header.end(), expected.begin());
  EXPECT_EQ(Bytes(request.begin(), request.end()), expected);
  EXPECT_EQ(InternetChecksum(request), 0) << "a message sums up with its checksum";
}

TEST(InternetChecksum, PadsAnOddByteAndFoldsTheCarries) {
  EXPECT_EQ(InternetChecksum({}), 0xFFFF);
  EXPECT_EQ(InternetChecksum(Bytes{0x12}), 0xFFED);
  EXPECT_EQ(InternetChecksum(Bytes{0x12, 0x34, 0x56}), 0xCB97);
  EXPECT_EQ(InternetChecksum(Bytes(65'535, 0xFF)), 0xFF00);
}

TEST(DecodeEchoReply, TakesTheReplyOfThisTryAlone) {
  EXPECT_TRUE(Decodes(Datagram(kReply)));
  EXPECT_TRUE(Decodes(Datagram(kReply, 15))) << "with IP options";
  EXPECT_FALSE(Decodes(Datagram(kReply), 1)) << "another try";
  EXPECT_FALSE(Decodes(Datagram(kReply), 0x0200)) << "the other byte order";
  Bytes other = kReply;
  other[4] = 0xCC;
  EXPECT_FALSE(Decodes(Datagram(other))) << "another process";
  for (int type = 1; type < 256; ++type) {
    other = kReply;
    other[0] = static_cast<std::uint8_t>(type);
    EXPECT_FALSE(Decodes(Datagram(other))) << type;
  }
}

TEST(DecodeEchoReply, TakesAQuoteThatIsWhole) {
  const Bytes quoted = Datagram({kEchoRequestType, 0, 0, 0, 0xCD, 0xAB, 0, 2}, 6);
  Bytes exceeded(kIcmpHeaderLength + quoted.size());
  exceeded[0] = kTimeExceededType;
  std::copy(quoted.begin(), quoted.end(), exceeded.begin() + kIcmpHeaderLength);
  const Bytes whole = Datagram(exceeded);
  EXPECT_TRUE(Decodes(whole));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(Decodes(Bytes(whole.begin(), whole.begin() + static_cast<long>(length))))
        << length;
  }
}

TEST(DecodeEchoReply, RefusesWhatIsTooShort) {
  const Bytes whole = Datagram(kReply);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(Decodes(Bytes(whole.begin(), whole.begin() + static_cast<long>(length))))
        << length;
  }
  Bytes noHeader = kReply;  // claims an IP header of no words
  EXPECT_FALSE(Decodes(noHeader));
}

}  // namespace
}  // namespace lanvoss
