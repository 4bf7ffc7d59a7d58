// What a test of the radio plays with: a host, with the library in it, and a camera. Prints how
// long everything takes, in milliseconds.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include "lanvoss/lanvoss.h"

#include "backends/posix/posix_system.h"
#include "backends/wpa/wpa_radio.h"
#include "camera.h"
#include "host_supplicant.h"
#include "recording_host.h"
#include "watcher/make_lanvoss.h"

namespace lanvoss::test {

inline constexpr char kOutput[] = "/tmp/output";
inline constexpr char kProgramOutput[] = "/tmp/program";
inline constexpr char kColumns[] = "%-40s %7s %7s %7s %7s %7s %7s\n";

inline const std::string kName = "Cam-7F21";  // of every camera that is not renamed
inline const std::string kDown = "(watch) Connection status changed: Disconnected";

inline std::string table;

inline std::string Row(const std::string& what, const std::vector<std::string>& cells) {
  char row[128];
  std::snprintf(row, sizeof row, kColumns, what.c_str(), cells[0].c_str(), cells[1].c_str(),
                cells[2].c_str(), cells[3].c_str(), cells[4].c_str(), cells[5].c_str());
  return row;
}

// A host and a camera that do not know each other.
class Radio : public testing::Test {
 protected:
  Radio() {
    std::fflush(stdout);
    EXPECT_NE(std::freopen(kOutput, "w", stdout), nullptr);
    std::filesystem::remove_all(directory_);
    std::filesystem::create_directory(directory_);
    for (const char* const command : {"P2P_GROUP_REMOVE *", "REMOVE_NETWORK all", "P2P_FLUSH"}) {
      SendToSupplicant(command);
    }
  }

  ~Radio() override {
    lanvoss.reset();
    std::fflush(stdout);
    dup2(output_, STDOUT_FILENO);
    close(output_);
    if (HasFailure()) {
      std::ifstream file(kOutput);
      for (std::string line; std::getline(file, line);) {
        std::printf("%s\n", line.c_str());
      }
      std::printf("%s", camera->Log().c_str());
    }
  }

  void SendToSupplicant(const std::string& command) const {
    EXPECT_EQ(supplicant.Ask(command), "OK\n") << command;
  }

  // A new object, which has the cache of the one before.
  void Open() {
    lanvoss.reset();
    const auto system = posix::CreateSystem();
    lanvoss = MakeLanvoss({system, wpa::CreateRadio(system, supplicant.Interface())},
                          &RecordingHost::OnNotify, directory_);
  }

  template <typename Operation>
  std::string Measure(const std::string& what, Operation operation) {
    logBefore_ = host_.LogLength();
    const auto begun = std::chrono::steady_clock::now();
    std::string result = operation();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begun;
    PrintRow(what, static_cast<int>(took.count()));
    return result;
  }

  std::string Ask(const std::string& what, const std::string& request) {
    return Measure(what, [&] { return lanvoss->GetDeviceIp(request); });
  }

  // Asks, and expects a link on which the camera answers.
  void Connect(const std::string& what, const std::string& request) {
    if (lanvoss == nullptr) {
      Open();
    }
    const std::string addresses = Ask(what, request);
    EXPECT_EQ(addresses, "192.168.49.1," + camera->Address());
    ExpectReplies();
  }

  void ExpectReplies() {
    lanvoss->PingCheck();
    EXPECT_EQ(Sum("(watch) ping done ret:"), 4);
  }

  // Expects the link to come down, and the camera to notice.
  void DisConnect() {
    EXPECT_EQ(lanvoss->DisConnect(""), 1);
    EXPECT_TRUE(Await([this] { return !camera->HasAddress(); }));
  }

  // The last line that the program prints.
  std::string RunProgram(const std::string& what, const std::string& operation) {
    return Measure(what, [&] {
      EXPECT_EQ(std::system(ProgramCommand("timeout 150", operation).c_str()), 0);
      std::string last;
      std::ifstream file(kProgramOutput);
      for (std::string line; std::getline(file, line); last = line) {
        std::printf("%s\n", line.c_str());
        RecordingHost::OnNotify("info", line);
      }
      return last;
    });
  }

  std::string ProgramCommand(const std::string& runner, const std::string& operation) const {
    return runner + " ./lanvoss --verbose --radio wpa:" + supplicant.Interface() + " --dir " +
           directory_.string() + " " + operation + " >" + kProgramOutput + " 2>&1";
  }

  // How many lines of the log have this in them, since the last measured operation began.
  int Logged(const std::string& text) {
    return static_cast<int>(std::ranges::count_if(host_.Log(logBefore_), [&](const auto& line) {
      return line.find(text) != std::string::npos;
    }));
  }

  bool IsLoggedSoon(const std::string& text) {
    return Await([&] { return Logged(text) > 0; });
  }

  HostSupplicant supplicant;
  std::shared_ptr<LanvossInterface> lanvoss;
  std::unique_ptr<Camera> camera = std::make_unique<Camera>("wlan1");

 private:
  // Of the numbers that follow this text in the log.
  int Sum(const std::string& before) {
    int sum = 0;
    for (const std::string& line : host_.Log(logBefore_)) {
      if (const auto at = line.find(before); at != std::string::npos) {
        sum += std::atoi(line.c_str() + at + before.size());
      }
    }
    return sum;
  }

  void PrintRow(const std::string& what, int totalMs) {
    std::vector<std::string> cells;
    int ownMs = totalMs;
    for (const char* const step :
         {" watch:", "PairAsync done dt:", "FromIdAsync done dt:", "ping done ret:0 dt:"}) {
      const int ms = Sum(step);
      ownMs -= ms;
      cells.push_back(ms == 0 ? "" : std::to_string(ms));
    }
    cells.push_back(std::to_string(totalMs));
    cells.push_back(std::to_string(std::max(ownMs, 0)));
    const std::string row = Row(what, cells);
    table += row;
    EXPECT_GT(write(output_, row.data(), row.size()), 0);
  }

  const std::filesystem::path directory_ = "/tmp/test";
  const int output_ = dup(STDOUT_FILENO);  // while the test's goes into a file
  RecordingHost host_;
  std::size_t logBefore_ = 0;  // the measured operation began
};

}  // namespace lanvoss::test
