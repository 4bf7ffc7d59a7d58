// How long a link takes from the request to the address, beside the same link made by hand; and
// what many links leave in the process.
//   lanvoss_radio_bench ROUNDS   of every way
//   lanvoss_radio_bench --links COUNT
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "backends/posix/posix_system.h"
#include "backends/wpa/finder.h"
#include "backends/wpa/wpa_radio.h"
#include "by_hand.h"
#include "camera.h"
#include "host_supplicant.h"
#include "recording_host.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::bench {
namespace {

using namespace std::chrono_literals;

const std::string kName = "Cam-7F21";
const std::string kDevice = "42:00:00:00:01:00";
constexpr char kFolder[] = "/tmp/bench";
constexpr auto kRest = 1s;  // the same before and after each, on both sides
// As somebody would write it who has read only the name of the command.
constexpr char kPlainFind[] = "P2P_FIND";

class Bench {
 public:
  Bench() { std::filesystem::create_directory(kFolder); }
  ~Bench() { lanvoss_.reset(); }
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  // Both sides forget each other.
  void ForgetAll() {
    for (const char* const command : {"REMOVE_NETWORK all", "SAVE_CONFIG", "P2P_FLUSH"}) {
      supplicant_.Ask(command);
    }
    camera_.ForgetCredentials();
    camera_.EndRejection();
  }

  double Ours(const std::string& request, double start) {
    Open();
    Rest(start);  // meanwhile it speaks to wpa_supplicant for the first time
    const double took = TimeOf([&] { Connect(request); });
    lanvoss_->DisConnect("");
    AwaitEnd();
    lanvoss_.reset();
    return took;
  }

  double ByHandWith(const std::function<void(ByHand&)>& way, double start) {
    ByHand hand;
    Rest(start);
    const double took = TimeOf([&] { way(hand); });
    std::this_thread::sleep_for(kRest);
    hand.Remove();
    AwaitEnd();
    return took;
  }

  // Connects so often with one object, and prints now and then what the process has.
  void ConnectTimes(int count) {
    Open();
    for (int links = 1; links <= count; ++links) {
      Connect(links == 1 ? kName : "\n" + kName);
      lanvoss_->DisConnect("");
      AwaitEnd();
      camera_.ForgetLog();
      if (links == count || links % std::max(count / 10, 1) == 0) {
        PrintResources(links);
      }
    }
  }

 private:
  template <typename Operation>
  static double TimeOf(Operation operation) {
    const auto begun = std::chrono::steady_clock::now();
    operation();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begun;
    return took.count();
  }

  void Open() {
    const auto system = posix::CreateSystem();
    lanvoss_ = MakeLanvoss({system, wpa::CreateRadio(system, supplicant_.Interface())},
                           &test::RecordingHost::OnNotify, kFolder);
  }

  // Ends `start` after the beginning of a second, 0 to 1. The kernel's radio starts a part of its
  // work only at whole seconds, which decides how often a request meets a device that listens.
  static void Rest(double start) {
    const auto rested = std::chrono::steady_clock::now() + kRest;
    const auto wanted = std::chrono::floor<std::chrono::seconds>(rested) +
                        std::chrono::milliseconds(static_cast<int>(start * 1'000));
    std::this_thread::sleep_until(wanted < rested ? wanted + 1s : wanted);
  }

  void Connect(const std::string& request) {
    if (lanvoss_->GetDeviceIp(request).empty()) {
      std::fprintf(stderr, "no link\n");
      std::exit(EXIT_FAILURE);
    }
  }

  // The camera listens again some time after that.
  void AwaitEnd() {
    test::Await([this] { return !camera_.HasAddress(); });
    std::this_thread::sleep_for(kRest);
  }

  static void PrintResources(int links) {
    const auto files = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    std::fprintf(stderr, "%d links: %d descriptors", links, static_cast<int>(files));
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("Threads:") || line.starts_with("VmRSS:")) {
        std::fprintf(stderr, ", %s", line.c_str());
      }
    }
    std::fprintf(stderr, "\n");
  }

  test::RecordingHost host_{nullptr, test::RecordingHost::Records::kNothing};
  test::HostSupplicant supplicant_;
  test::Camera camera_{"wlan1"};
  std::shared_ptr<LanvossInterface> lanvoss_;
};

struct Times {
  std::vector<double> ms;

  double At(double share) {
    std::ranges::sort(ms);
    return ms[static_cast<std::size_t>(static_cast<double>(ms.size() - 1) * share + 0.5)];
  }
  std::string Text() {
    char text[64];
    std::snprintf(text, sizeof text, "%.0f ms (%.0f to %.0f)", At(0.5), At(0.25), At(0.75));
    return text;
  }
};

// A way to a link, and the same by hand.
struct Way {
  std::string name;
  std::string beside;
  bool isNew = false;
  std::string request;
  std::function<void(ByHand&)> byHand;
};

const std::vector<Way> kWays = {
    {"a new device", "`P2P_FIND`, `P2P_CONNECT`", true, kName,
     [](ByHand& hand) { hand.Pair(kPlainFind, kDevice); }},
    {"a new device", "the same on the channels where devices listen", true, kName,
     [](ByHand& hand) { hand.Pair(wpa::kQuickFind, kDevice); }},
    {"a known device", "`P2P_FIND`, `P2P_INVITE`", false, kName,
     [](ByHand& hand) { hand.FindAndInvite(kPlainFind, kDevice); }},
    {"a known device", "the same on the channels where devices listen", false, kName,
     [](ByHand& hand) { hand.FindAndInvite(wpa::kQuickFind, kDevice); }},
    {"by id", "`P2P_INVITE`", false, "\n" + kName, [](ByHand& hand) { hand.Invite(kDevice); }}};

void Compare(int rounds) {
  Bench bench;
  std::fprintf(stderr,
               "| Link | Ours, median (quartiles) | By hand | Beside | Ratio |\n"
               "|---|---|---|---|---|\n");
  for (const Way& way : kWays) {
    Times ours;
    Times byHand;
    if (!way.isNew) {
      bench.ForgetAll();
      bench.Ours(kName, 0);
    }
    for (int round = 0; round < rounds; ++round) {
      const double start = static_cast<double>(round) / rounds;
      if (way.isNew) {
        bench.ForgetAll();
      }
      ours.ms.push_back(bench.Ours(way.request, start));
      if (way.isNew) {
        bench.ForgetAll();
      }
      byHand.ms.push_back(bench.ByHandWith(way.byHand, start));
    }
    std::fprintf(stderr, "| %s | %s | %s | %s | %.2f |\n", way.name.c_str(), ours.Text().c_str(),
                 byHand.Text().c_str(), way.beside.c_str(), ours.At(0.5) / byHand.At(0.5));
  }
}

}  // namespace
}  // namespace lanvoss::bench

int main(int argc, char** argv) {
  const std::string first = argc > 1 ? argv[1] : "20";
  if (first == "--links") {
    lanvoss::bench::Bench().ConnectTimes(argc > 2 ? std::atoi(argv[2]) : 1'000);
  } else {
    lanvoss::bench::Compare(std::atoi(first.c_str()));
  }
  return 0;
}
