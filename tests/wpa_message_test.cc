// The events of wpa_supplicant: names come from other devices and may imitate anything.
#include <gtest/gtest.h>

#include "backends/wpa/dhcp.h"
#include "backends/wpa/message.h"

namespace lanvoss::wpa {
namespace {

TEST(WpaMessage, HasItsWordsAndFields) {
  const Message message = ParseMessage(
      "<3>P2P-GROUP-STARTED p2p-wlan0-0 GO ssid=\"DIRECT-a b\" freq=2437 passphrase=\"qD tC\" "
      "psk=441e go_dev_addr=42:00:00:00:00:00 [PERSISTENT]");
  EXPECT_EQ(message.name, "P2P-GROUP-STARTED");
  EXPECT_EQ(message.Word(0), "p2p-wlan0-0");
  EXPECT_EQ(message.Word(1), "GO");
  EXPECT_EQ(message.Word(2), "[PERSISTENT]");
  EXPECT_EQ(message.Word(3), "");
  EXPECT_EQ(message.Field("go_dev_addr"), "42:00:00:00:00:00");
  for (const char* secret : {"passphrase", "psk"}) {
    EXPECT_EQ(message.Field(secret), "") << secret;
  }
}

TEST(WpaMessage, IsNotMisledByANetworkName) {
  const Message message = ParseMessage(
      "<3>P2P-GROUP-STARTED p2p-wlan0-0 client ssid=\"DIRECT-a\" go_dev_addr=66:66:66:66:66:66 "
      "ip_addr=\"\" freq=2437 passphrase=\"x' psk=1\" go_dev_addr=42:00:00:00:01:00 "
      "ip_addr=192.168.49.10");
  EXPECT_EQ(message.Word(1), "client");
  EXPECT_EQ(message.Field("go_dev_addr"), "42:00:00:00:01:00");
  EXPECT_EQ(message.Field("ip_addr"), "192.168.49.10");
}

TEST(WpaMessage, IsNotMisledByAName) {
  const Message message = ParseMessage(
      "<3>P2P-DEVICE-FOUND 46:00:00:00:01:00 p2p_dev_addr=42:00:00:00:01:00 "
      "name='it's' p2p_dev_addr=66:66:66:66:66:66 x='' config_methods=0x80 new=1");
  EXPECT_EQ(message.Word(0), "46:00:00:00:01:00");
  EXPECT_EQ(message.Field("p2p_dev_addr"), "42:00:00:00:01:00");
  EXPECT_EQ(LineOf("42:00:00:00:01:00\ndevice_name=a device_name=b|'\nage=3\n", "device_name"),
            "a device_name=b|'");
}

TEST(WpaMessage, IsNotMisledByTheReasonOfADeclinedLease) {
  const std::string device = "02:00:00:00:01:00";
  const std::string ack = "DHCPACK(p2p-wlan0-0) 192.168.49.10 " + device;
  const auto leased = [&](const std::string& line) {
    return LeasedAddress("dnsmasq-dhcp[12]: " + line, "p2p-wlan0-0", device);
  };
  EXPECT_EQ(leased(ack + " its-name"), "192.168.49.10");
  EXPECT_EQ(leased("DHCPDECLINE(p2p-wlan0-0) 192.168.49.11 " + device + " " + ack), "");
  EXPECT_EQ(leased("DHCPACK(p2p-wlan0-0) 192.168.49.10 66:66:66:66:66:66"), "");
  EXPECT_EQ(leased(""), "");
}

TEST(WpaMessage, TakesWhateverComes) {
  for (const char* text : {"", "<", "<3>", "<3> ", "=", "<3>A =", "<3>A b='", "<3>A b='c", " "}) {
    EXPECT_NO_THROW(ParseMessage(text)) << text;
  }
  EXPECT_EQ(ParseMessage("CTRL-EVENT-TERMINATING ").name, "CTRL-EVENT-TERMINATING");
}

}  // namespace
}  // namespace lanvoss::wpa
