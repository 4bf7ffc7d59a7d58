// A wpa_supplicant that misbehaves: it is slow, silent, not read from, replaced, forged or lied to
// by the devices around.
#include "backends/wpa/supplicant.h"

#include <atomic>
#include <csignal>
#include <gtest/gtest.h>
#include <map>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "backends/wpa/credentials.h"
#include "backends/wpa/given_addresses.h"
#include "backends/wpa/negotiation.h"
#include "backends/wpa/supplicant_examination.h"
#include "platform/error.h"
#include "platform/unicode.h"
#include "scenario_test.h"

namespace lanvoss::wpa {
namespace {

sockaddr_un AddressOf(const std::string& path) {
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

// Its socket. What it does with it is up to the test.
class FakeSupplicant : public testing::Test {
 protected:
  FakeSupplicant() {
    const sockaddr_un address = AddressOf(path);
    EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }
  ~FakeSupplicant() override { close(socket_); }

  struct Client {
    sockaddr_un address{};
    socklen_t length = sizeof address;
  };

  // The next datagram; its sender is answered from now on.
  std::string Read() {
    char text[256];
    sender = {};
    const ssize_t length = recvfrom(socket_, text, sizeof text, 0,
                                    reinterpret_cast<sockaddr*>(&sender.address), &sender.length);
    return {text, static_cast<std::size_t>(length)};
  }
  bool Send(const Client& to, const std::string& text, int from) const {
    return sendto(from, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&to.address),
                  to.length) > 0;
  }
  bool Answer(const std::string& text, int from) const { return Send(sender, text, from); }
  bool Answer(const std::string& text) const { return Answer(text, socket_); }
  bool Send(const Client& to, const std::string& text) const { return Send(to, text, socket_); }

  const test::TemporaryDirectory directory;
  const std::string path = (directory.path / "wlan-fake").string();
  Client sender;

 private:
  const int socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

TEST_F(FakeSupplicant, ASignalNeitherEndsNorProlongsAWait) {
  struct sigaction counts {};
  counts.sa_handler = [](int) {};
  struct sigaction before {};
  sigaction(SIGUSR1, &counts, &before);
  std::string reply;
  std::atomic<bool> isOver = false;
  std::thread asker([&] {
    reply = Ask(path, "STATUS");
    ControlSocket silent(path);
    EXPECT_EQ(silent.Receive(300), std::nullopt);
    isOver = true;
  });
  EXPECT_EQ(Read(), "STATUS");
  for (int signals = 0; signals < 200 && !isOver; ++signals) {
    pthread_kill(asker.native_handle(), SIGUSR1);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    if (signals == 5) {
      EXPECT_TRUE(Answer("late"));
    }
  }
  EXPECT_TRUE(isOver) << "signals keep it waiting";
  asker.join();
  sigaction(SIGUSR1, &before, nullptr);
  EXPECT_EQ(reply, "late");
}

TEST_F(FakeSupplicant, OneThatDoesNotReadBlocksForItsTimeAlone) {
  ControlSocket conversation(path);
  EXPECT_THROW(
      for (int i = 0; i < 100'000; ++i) { conversation.Send("PING", 50); }, platform::Error);
}

TEST_F(FakeSupplicant, EndsAtOnceWhileItIsSilent) {
  std::thread server([this] {
    EXPECT_EQ(Read(), "ATTACH");
    EXPECT_TRUE(Answer("OK\n"));
  });
  {
    const Supplicant supplicant(path, [](const Message&) {});
    server.join();
  }
}

TEST_F(FakeSupplicant, NobodyElseCanSendAReply) {
  ControlSocket conversation(path);
  conversation.Send("STATUS", 1'000);
  EXPECT_EQ(Read(), "STATUS");
  const int stranger = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  EXPECT_FALSE(Answer("forged", stranger));
  close(stranger);
  EXPECT_TRUE(Answer("real"));
  EXPECT_EQ(conversation.Receive(1'000), "real");
}

TEST_F(FakeSupplicant, ASocketOfAnotherUserIsNotTrusted) {
  const std::string file = (directory.path / "file").string();
  test::WriteFile(file, "");
  EXPECT_THROW(ControlSocket{file}, platform::Error) << "no socket";
  const std::string link = (directory.path / "link").string();
  EXPECT_EQ(symlink(path.c_str(), link.c_str()), 0);
  EXPECT_THROW(ControlSocket{link}, platform::Error) << "a link may be exchanged";
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can give a socket to another user";
  }
  constexpr uid_t kStranger = 12'345;
  ASSERT_EQ(chown(path.c_str(), kStranger, kStranger), 0);
  EXPECT_THROW(ControlSocket{path}, platform::Error);
}

constexpr char kDevice[] = "42:00:00:00:01:00";

// One that answers, and sends events after the command that brings them about.
class LyingSupplicant : public FakeSupplicant {
 protected:
  ~LyingSupplicant() override {
    if (server_.joinable()) {
      ControlSocket(path).Send(kEnd, 1'000);
      server_.join();
    }
  }

  void Run() {
    replies.try_emplace("P2P_PEER", std::string(kDevice) + "\n");
    server_ = std::thread([this] {
      for (std::string command = Read(); command != kEnd; command = Read()) {
        Serve(command);
      }
    });
    supplicant.emplace(path, [](const Message&) {});
    inbox.emplace(*supplicant);
  }

  // What the error says; empty when there is none.
  template <typename Operation>
  static std::string ErrorOf(Operation operation) {
    try {
      operation();
      return {};
    } catch (const platform::Error& error) {
      return platform::Utf16ToUtf8(error.Message());
    }
  }

  Negotiation Pair() { return Negotiate(*supplicant, *inbox, kDevice, 14); }

  std::map<std::string, std::string> replies;              // to a command, or to its first word
  std::map<std::string, std::vector<std::string>> events;  // by the first word
  std::optional<Supplicant> supplicant;
  std::optional<Inbox> inbox;

 private:
  static constexpr char kEnd[] = "end of the test";

  void Serve(const std::string& command) {
    const std::string word = command.substr(0, command.find(' '));
    if (word == "ATTACH") {
      attached_ = sender;
    }
    const auto& reply = replies.contains(command) ? replies[command] : replies[word];
    EXPECT_TRUE(Answer(reply.empty() ? "OK\n" : reply));
    for (const std::string& event : events[word]) {
      EXPECT_TRUE(Send(attached_, "<3>" + event));
    }
  }

  Client attached_;
  std::thread server_;
};

TEST_F(LyingSupplicant, TheGroupOfAnotherDeviceIsNotTaken) {
  const std::string agreed = "P2P-GO-NEG-SUCCESS role=client peer_dev=";
  events["P2P_CONNECT"] = {
      "P2P-GROUP-STARTED p2p-wlan0-1 GO ssid=\"DIRECT-b\" go_dev_addr=42:00:00:00:00:00",
      agreed + "66:66:66:66:66:66",
      "P2P-GROUP-STARTED p2p-wlan0-2 client ssid=\"DIRECT-c\" go_dev_addr=" + std::string(kDevice),
      agreed + kDevice,
      "P2P-GROUP-STARTED p2p-wlan0-3 client ssid=\"DIRECT-d\" go_dev_addr=" + std::string(kDevice) +
          " \" go_dev_addr=66:66:66:66:66:66 ip_addr=192.168.49.10 go_ip_addr=192.168.49.1",
      "P2P-GO-NEG-FAILURE status=11"};
  Run();
  EXPECT_EQ(Pair().status, platform::DevicePairingResultStatus::ConnectionRejected);
}

// It was paired once too, and has chosen the same network name.
TEST_F(LyingSupplicant, TheGroupOfAnotherDeviceIsNotTakenForAStoredOne) {
  replies["LIST_NETWORKS"] =
      "0\tDIRECT-a\t" + std::string(kDevice) + "\t[DISABLED][P2P-PERSISTENT]\n";
  replies["LIST_NETWORKS LAST_ID=0"] = "\n";
  replies["STATUS"] = "ssid=DIRECT-a\n";
  events["P2P_INVITE"] = {
      "P2P-INVITATION-RESULT status=0",
      "P2P-GROUP-STARTED wlan-fake client ssid=\"DIRECT-a\" go_dev_addr=66:66:66:66:66:66 "
      "ip_addr=192.168.233.10 go_ip_addr=192.168.233.1",
      "P2P-GROUP-FORMATION-FAILURE"};
  Run();
  EXPECT_EQ(ErrorOf([this] { EXPECT_FALSE(Invite(*supplicant, *inbox, kDevice)); }), "");
}

TEST_F(LyingSupplicant, NoInterfaceButAGroupsGetsAnAddress) {
  events["P2P_CONNECT"] = {"P2P-GO-NEG-SUCCESS role=client peer_dev=" + std::string(kDevice),
                           "P2P-GROUP-STARTED lo client ssid=\"DIRECT-a\" go_dev_addr=" +
                               std::string(kDevice) + " ip_addr=10.1.2.10 go_ip_addr=10.1.2.1"};
  Run();
  EXPECT_NE(ErrorOf([this] { Pair(); }).find("a group on lo"), std::string::npos);
}

TEST_F(LyingSupplicant, ARefusalKeepsItsReason) {
  replies["P2P_CONNECT"] = "FAIL-CHANNEL-UNAVAILABLE\n";
  Run();
  EXPECT_EQ(ErrorOf([this] { Pair(); }),
            "wpa_supplicant refuses P2P_CONNECT: FAIL-CHANNEL-UNAVAILABLE");
}

TEST_F(LyingSupplicant, ItsEndEndsANegotiation) {
  events["P2P_CONNECT"] = {"", "=", "'", "P2P-GROUP-STARTED", "CTRL-EVENT-TERMINATING"};
  Run();
  EXPECT_EQ(Pair().status, platform::DevicePairingResultStatus::HardwareFailure);
}

TEST_F(LyingSupplicant, AStoredGroupIsFoundInALaterReply) {
  const std::string head = "network id / ssid / bssid / flags\n";
  const std::string flags = "\t[DISABLED][P2P-PERSISTENT]\n";
  replies["LIST_NETWORKS"] = head + "0\tDIRECT-a\t66:66:66:66:66:66" + flags;
  replies["LIST_NETWORKS LAST_ID=0"] = head + "7\tDIRECT-b\t" + kDevice + flags;
  replies["LIST_NETWORKS LAST_ID=7"] = head;
  replies["GET_NETWORK"] = "FAIL\n";
  Run();
  const auto group = StoredGroupWith(*supplicant, kDevice);
  ASSERT_TRUE(group);
  EXPECT_EQ(group->id, "7");
}

std::string Missing(const Supplicant& supplicant, const std::string& configuration) {
  std::string all;
  for (const auto& finding : ExamineSupplicant(supplicant, "wlan-fake", configuration)) {
    all += finding.isFine ? "" : finding.what + "; " + finding.remedy + "\n";
  }
  return all;
}

TEST_F(LyingSupplicant, IsExaminedForWhatHindersALink) {
  replies = {{"GET update_config", "0\n"},
             {"INTERFACES", "wlan-fake\n"},
             {"STATUS", "ssid=DIRECT-a\nfreq=5180\np2p_device_address=42:00:00:00:00:00\n"},
             {"LIST_NETWORKS", "head\n3\tDIRECT-b\t42:00:00:00:00:77\t[P2P-PERSISTENT]\n"},
             {"LIST_NETWORKS LAST_ID=3", "head\n"},
             {"GET_NETWORK", "3"},
             {"GET_CAPABILITY", " 1 = 2412 MHz\n 36 = 5180 MHz (NO_IR)\n"}};
  Run();
  const std::string found = Missing(*supplicant, "/etc/mine.conf");
  for (const char* const text :
       {"the group wlan-fake; sudo wpa_cli -i wlan-fake p2p_group_remove wlan-fake",
        "keeps pairings", "update_config=1 into /etc/mine.conf",
        "3 (DIRECT-b) was made with another address",
        "5180 MHz; move the access point of wlan-fake", "country=DE in /etc/mine.conf"}) {
    EXPECT_NE(found.find(text), std::string::npos) << text << " is not in\n" << found;
  }
  EXPECT_NE(Missing(*supplicant, "").find("nmcli device set wlan-fake managed no"),
            std::string::npos);
}

TEST_F(LyingSupplicant, IsExaminedAndFoundFine) {
  replies = {{"GET update_config", "1\n"},
             {"INTERFACES", "wlan-fake\n"},
             {"STATUS", "ssid=DIRECTOR\np2p_device_address=42:00:00:00:00:77\n"},
             {"LIST_NETWORKS", "head\n"},
             {"GET_CAPABILITY", " 1 = 2412 MHz (NO_IR)\n 6 = 2437 MHz\n"}};
  Run();
  EXPECT_EQ(Missing(*supplicant, ""), "");
}

// The owner of a group chooses both addresses.
TEST_F(LyingSupplicant, OnlyHostsOfOnePrivateNetworkAreTaken) {
  const auto error = [](const std::string& local, const std::string& remote) {
    return ErrorOf([&] { CheckGivenAddresses(local, remote); });
  };
  const std::string good = "192.168.233.10";
  EXPECT_EQ(error(good, "192.168.233.1"), "");
  for (const char* const bad :
       {"", "8.8.8.8", "127.0.0.1", "224.0.0.1", "255.255.255.255", "0.0.0.0", "169.254.1.1",
        "192.168.233.255", "192.168.233.0", "192.168.234.1", "192.168.233.10", "fe80::1", "a b"}) {
    EXPECT_NE(error(good, bad), "") << bad;
    EXPECT_NE(error(bad, good), "") << bad;
  }
}

}  // namespace
}  // namespace lanvoss::wpa
