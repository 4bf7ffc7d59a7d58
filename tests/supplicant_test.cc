// A wpa_supplicant that misbehaves: it is slow, silent, not read from, replaced or forged.
#include "backends/wpa/supplicant.h"

#include <atomic>
#include <csignal>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "platform/error.h"
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

  // The next datagram; its sender is answered from now on.
  std::string Read() {
    char text[256];
    length_ = sizeof sender_;
    const ssize_t length =
        recvfrom(socket_, text, sizeof text, 0, reinterpret_cast<sockaddr*>(&sender_), &length_);
    return {text, static_cast<std::size_t>(length)};
  }
  bool Answer(const std::string& text, int from) const {
    return sendto(from, text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&sender_),
                  length_) > 0;
  }
  bool Answer(const std::string& text) const { return Answer(text, socket_); }

  const test::TemporaryDirectory directory;
  const std::string path = (directory.path / "wlan0").string();

 private:
  const int socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_un sender_{};
  socklen_t length_ = 0;
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

}  // namespace
}  // namespace lanvoss::wpa
