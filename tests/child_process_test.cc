// The programs that the radio starts: what they can see and do, and that nothing of them remains.
#include "backends/wpa/child_process.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/error.h"

namespace lanvoss::wpa {
namespace {

using namespace std::chrono_literals;

std::chrono::steady_clock::time_point Soon() { return std::chrono::steady_clock::now() + 10s; }

ChildProcess::Settings Shell(const std::string& script,
                             const std::vector<unsigned>& capabilities = {}) {
  return {.arguments = {"sh", "-c", script}, .capabilities = capabilities};
}

std::string Printed(const ChildProcess::Settings& settings) {
  ChildProcess child(settings);
  std::string text;
  try {
    while (const auto line = child.NextLine(Soon())) {
      text += *line + "\n";
    }
  } catch (const platform::Error&) {
    // It has ended.
  }
  return text;
}

TEST(ChildProcess, SeesNothingOfThisProcess) {
  setenv("LANVOSS_SECRET", "secret", 1);
  const int secret = open("/dev/null", O_RDONLY);  // NOLINT: inherited, as a host's may be
  EXPECT_EQ(Printed({.arguments = {"env"}, .capabilities = {}}),
            "PATH=/usr/sbin:/sbin:/usr/bin:/bin\n");
  EXPECT_EQ(Printed(Shell("for f in /proc/$$/fd/*; do [ ! -e $f ] || basename $f; done")),
            "0\n1\n2\n");
  close(secret);
  unsetenv("LANVOSS_SECRET");
}

// Also where the host has closed its input, so that the file has that number.
TEST(ChildProcess, ReceivesAFile) {
  const int input = dup(STDIN_FILENO);
  for (const bool hasInput : {true, false}) {
    if (!hasInput) {
      close(STDIN_FILENO);
    }
    const NamelessFile script("#!/bin/sh\necho it runs\n");
    EXPECT_EQ(
        Printed(
            {.arguments = {"sh", "-c", NamelessFile::Path()}, .capabilities = {}, .file = &script}),
        "it runs\n");
  }
  dup2(input, STDIN_FILENO);
  close(input);
}

TEST(ChildProcess, HasNoRightsButThoseThatItNeeds) {
  const std::string rights =
      Printed(Shell("id -u; id -G; grep CapEff /proc/self/status", {CAP_NET_ADMIN}));
  EXPECT_EQ(rights, geteuid() == 0 ? "65534\n65534\nCapEff:\t0000000000001000\n" : rights);
}

TEST(ChildProcess, BeginsWithoutTheSignalSettingsOfThisProcess) {
  const auto before = std::signal(SIGTERM, SIG_IGN);
  EXPECT_EQ(Printed(Shell("grep -E 'Sig(Blk|Ign)' /proc/self/status")),
            "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
  std::signal(SIGTERM, before);
}

TEST(ChildProcess, LeavesTheReasonOfItsEnd) {
  ChildProcess child(Shell("echo first; echo the port is in use >&2; exit 2"));
  EXPECT_EQ(child.NextLine(Soon()), "first");
  EXPECT_EQ(child.NextLine(Soon()), "the port is in use");
  try {
    child.NextLine(Soon());
    ADD_FAILURE() << "it has ended";
  } catch (const platform::Error& error) {
    EXPECT_EQ(error.Message(), u"sh has ended: the port is in use");
  }
  EXPECT_THROW(ChildProcess({.arguments = {"lanvoss-no-such-program"}, .capabilities = {}}),
               platform::Error);
}

// If the host lets the system forget children, the number of one that has ended may already mean
// another process.
TEST(ChildProcess, EndsWhereItIsForgotten) {
  const auto before = std::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(Printed(Shell("echo short")), "short\n");
  ChildProcess{Shell("sleep 1000")};
  std::signal(SIGCHLD, before);
}

TEST(ChildProcess, EndsWithAKilledHost) {
  std::array<int, 2> channel{};
  ASSERT_EQ(pipe(channel.data()), 0);
  const pid_t host = fork();
  if (host == 0) {
    ChildProcess child(Shell("echo $$; exec sleep 1000", {CAP_NET_BIND_SERVICE}));
    const std::string number = child.NextLine(Soon()).value_or("");
    EXPECT_GT(write(channel[1], number.data(), number.size()), 0);
    kill(getpid(), SIGKILL);
  }
  waitpid(host, nullptr, 0);
  close(channel[1]);
  std::array<char, 32> number{};
  ASSERT_GT(read(channel[0], number.data(), number.size() - 1), 0);
  close(channel[0]);
  const auto isGone = [&] {
    std::ifstream status("/proc/" + std::string(number.data()) + "/stat");
    std::string process;
    std::string name;
    std::string state = "Z";  // ended; its new parent may not notice that
    status >> process >> name >> state;
    return state == "Z";
  };
  for (int tries = 0; tries < 1'000 && !isGone(); ++tries) {
    std::this_thread::sleep_for(10ms);
  }
  EXPECT_TRUE(isGone());
}

}  // namespace
}  // namespace lanvoss::wpa
