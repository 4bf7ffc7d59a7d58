// The base of scenario tests: one host, one object and one simulated air, on the stage of the
// program.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "lanvoss/lanvoss.h"

#include "backends/simulated/air.h"
#include "recording_host.h"
#include "stages/stage.h"

namespace lanvoss::test {

using simulated::Call;
using simulated::Failure;
using simulated::Habits;
using simulated::LinkEnd;
using simulated::Outcome;
using simulated::PeerHandle;

// Lines of the log. Durations in them count only on a stage where they are exact.
class Lines : public std::vector<std::string> {
 public:
  using std::vector<std::string>::vector;
  explicit Lines(std::vector<std::string> lines) : vector(std::move(lines)) {}
  friend bool operator==(const Lines& a, const Lines& b);
};

// How long something took. The same holds for it.
struct Duration {
  std::int32_t ms = 0;
  friend bool operator==(Duration a, std::int32_t b) { return !kIsTimeExact || a.ms == b; }
  friend bool operator<=(Duration a, std::int32_t b) { return !kIsTimeExact || a.ms <= b; }
  friend bool operator>=(Duration a, std::int32_t b) { return !kIsTimeExact || a.ms >= b; }
  friend std::ostream& operator<<(std::ostream& out, Duration duration) {
    return out << duration.ms << " ms";
  }
};

// What a request returns for a device at the default addresses.
inline const std::string kAddress = "192.168.49.1,192.168.49.20";

std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& bytes);

// A directory for one test, removed at the end.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  const std::filesystem::path path;
};

// Standard output goes into a file while it lives.
class CapturedOutput {
 public:
  explicit CapturedOutput(std::filesystem::path file);
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;
  std::string Text() const;

 private:
  const std::filesystem::path file_;
  const int original_;
};

class ScenarioTest : public testing::Test {
 protected:
  ScenarioTest();
  void SetUp() override;
  void TearDown() override;

  // Builds the object, with a callback that records and the test's directory.
  void Open() { OpenIn(directory.path.string()); }
  void OpenIn(const std::string& cacheDirectory);
  void Listen(RecordingHost::Listener listener) { host_.Listen(std::move(listener)); }
  // Calls `act` at the first notification from now on of that kind, or whose message begins so.
  void At(const std::string& start, std::function<void()> act);
  void PauseAt(const std::string& start) {
    At(start, [this] { Advance(500); });
  }
  // Lets time pass.
  void Advance(std::uint32_t milliseconds) { time->Sleep(milliseconds); }
  // Runs a host thread; the returned handle waits for it.
  std::unique_ptr<events::Thread> Host(std::function<void()> body) {
    return time->Start("host", std::move(body));
  }
  Duration TimeOf(const std::function<void()>& operation);
  Duration SinceTheBeginning() { return {time->Clock() - begun_}; }  // of the test
  // Asks for an address, expects it, and returns how long that took.
  Duration Ask(const std::string& request, const std::string& expected);
  // Opens, asks for the device and expects its default addresses.
  void Connect(const std::string& name);

  Lines Log();  // the "info" messages since the last call
  // The same without one line that another thread writes at about that time.
  Lines LogWithout(const std::string& line);
  Lines Notified();       // "kind message" of all others since the last call
  std::string Printed();  // standard output since the last call; <kind message> where Notified
  // What was logged, notified and printed so far counts no more.
  void ForgetOutput();
  bool Logged(const std::string& line);        // among all so far
  bool LoggedStart(const std::string& start);  // a line that begins so, among all so far
  // The line of a link to a device at the default addresses, with the times of its steps.
  bool LoggedLink(const std::string& name, const std::string& times) {
    return Logged("(watch) Devices connected on L2 layer, connecting to name(" + name +
                  "),time:" + times + " IPAddress: loc:192.168.49.1 remote:192.168.49.20");
  }
  std::filesystem::path CachePath() const { return directory.path / "deviceinfo.bin"; }

  const std::shared_ptr<StageTime> time = NewTime();
  simulated::Air air{time, time};
  TemporaryDirectory directory;
  std::shared_ptr<LanvossInterface> lanvoss;
  unsigned expectedEscapes = 0;

 private:
  static void Print(const std::string& kind, const std::string& message);

  CapturedOutput output_{directory.path / "output"};
  const std::int32_t begun_ = time->Clock();
  RecordingHost host_{&ScenarioTest::Print};
  std::size_t printedBefore_ = 0;
  std::size_t logBefore_ = 0;
  std::size_t notifiedBefore_ = 0;
};

}  // namespace lanvoss::test
