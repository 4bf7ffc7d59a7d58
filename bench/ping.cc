// The probe of four echo requests, in this process and as a program, beside its peers.
#include <arpa/inet.h>
#include <array>
#include <benchmark/benchmark.h>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <oping.h>
#include <spawn.h>
#include <string>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include "backends/posix/posix_system.h"
#include "supervision/echo_message.h"
#include "supervision/ping_host.h"

namespace lanvoss::bench {
namespace {

constexpr int kTries = 4;
constexpr int kTimeoutS = 3;

void Library(benchmark::State& state, const char* host) {
  const auto system = posix::CreateSystem();
  for (auto _ : state) {
    if (PingHost(*system, host) != kTries) {
      state.SkipWithError("no answer: the right to raw sockets or the network is missing");
      break;
    }
  }
}

// No more than it takes to see the replies.
void Bare(benchmark::State& state, const char* host) {
  const auto ask = [host] {
    const int icmp = socket(AF_INET, SOCK_RAW, IPPROTO_ICMP);
    timeval timeout{.tv_sec = kTimeoutS, .tv_usec = 0};
    setsockopt(icmp, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    inet_pton(AF_INET, host, &address.sin_addr);
    int replies = 0;
    std::array<std::uint8_t, 1024> buffer{};
    for (std::uint16_t sequence = 0; sequence < kTries; ++sequence) {
      const auto request = MakeEchoRequest(ExpectReply(1, sequence));
      sendto(icmp, request.data(), request.size(), 0, reinterpret_cast<const sockaddr*>(&address),
             sizeof address);
      ssize_t length = 0;
      do {
        length = recvfrom(icmp, buffer.data(), buffer.size(), 0, nullptr, nullptr);
      } while (length > 0 && buffer[20] != kEchoReplyType);
      replies += length > 0 ? 1 : 0;
    }
    close(icmp);
    return replies;
  };
  for (auto _ : state) {
    if (ask() != kTries) {
      state.SkipWithError("no answer: the right to raw sockets or the network is missing");
      break;
    }
  }
}

void Liboping(benchmark::State& state, const char* host) {
  for (auto _ : state) {
    pingobj_t* pings = ping_construct();
    bool answered = ping_host_add(pings, host) == 0;
    for (int i = 0; answered && i < kTries; ++i) {
      answered = ping_send(pings) == 1;
    }
    ping_destroy(pings);
    if (!answered) {
      state.SkipWithError("no answer: the right to raw sockets or the network is missing");
      break;
    }
  }
}

void Program(benchmark::State& state, std::array<const char*, 7> arguments) {
  std::array<char*, 8> argv{};
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    argv[i] = const_cast<char*>(arguments[i]);
  }
  posix_spawn_file_actions_t quiet;
  posix_spawn_file_actions_init(&quiet);
  posix_spawn_file_actions_addopen(&quiet, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&quiet, STDOUT_FILENO, STDERR_FILENO);
  for (auto _ : state) {
    pid_t child = 0;
    int status = -1;
    if (posix_spawnp(&child, argv[0], &quiet, nullptr, argv.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0) {
      state.SkipWithError("the program did not end well");
      break;
    }
  }
  posix_spawn_file_actions_destroy(&quiet);
}

bool AddCases(const std::string& name, const char* host) {
  const auto add = [&name](const char* who, auto run, auto argument) {
    benchmark::RegisterBenchmark(("ping/" + name + "/" + who).c_str(), run, argument)
        ->UseRealTime();
  };
  using Arguments = std::array<const char*, 7>;
  add("library", Library, host);
  add("bare", Bare, host);
  add("liboping", Liboping, host);
  add("program", Program, Arguments{LANVOSS_PROBE, host});
  add("fping", Program, Arguments{"fping", "-c", "4", "-p", "1", "-q", host});
  add("fping_once", Program, Arguments{"fping", "-c", "1", "-q", host});
  return true;
}

// The far end of the cable is where bench/run.py puts it.
[[maybe_unused]] const bool onLoopback = AddCases("loopback", "127.0.0.1");
[[maybe_unused]] const bool acrossCable = AddCases("cable", "192.0.2.2");

}  // namespace
}  // namespace lanvoss::bench
