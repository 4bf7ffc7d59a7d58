#include "scenario_test.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <mutex>
#include <regex>
#include <utility>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include "lanvoss/client/log_line.h"

#include "environment.h"
#include "own_folder.h"

namespace lanvoss::test {
namespace {

// Without the durations where they are not exact.
std::string Timeless(const std::string& line) {
  static const std::regex durations("[0-9]+ms|dt:[0-9]+");
  return kIsTimeExact ? line : std::regex_replace(line, durations, "#");
}

bool IsSameLine(const std::string& a, const std::string& b) { return Timeless(a) == Timeless(b); }

// What this thread is doing: the host's operation that it is inside, or "platform".
thread_local const char* inside = "platform";

class Inside {
 public:
  explicit Inside(const char* operation) : before_(std::exchange(inside, operation)) {}
  ~Inside() { inside = before_; }
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;

 private:
  const char* const before_;
};

// The object, whose operations say that they are under way.
class Announced final : public LanvossInterface {
 public:
  explicit Announced(std::shared_ptr<LanvossInterface> object) : object_(std::move(object)) {}
  ~Announced() {
    const Inside operation("last reference");
    object_.reset();
  }
  Announced(const Announced&) = delete;
  Announced& operator=(const Announced&) = delete;

#define ANNOUNCED(Result, Name, declared, given) \
  Result Name declared override {                \
    const Inside operation(#Name);               \
    return object_->Name given;                  \
  }
  ANNOUNCED(std::int32_t, StartWatch, (std::string name), (name))
  ANNOUNCED(std::int32_t, StopWatch, (), ())
  ANNOUNCED(std::string, GetDeviceIp, (std::string request), (request))
  ANNOUNCED(std::int32_t, AbortConnect, (std::string unused), (unused))
  ANNOUNCED(std::int32_t, DisConnect, (std::string unused), (unused))
  ANNOUNCED(std::int32_t, Unpair, (std::string name), (name))
  ANNOUNCED(std::string, PingCheck, (), ())
#undef ANNOUNCED

 private:
  std::shared_ptr<LanvossInterface> object_;
};

std::filesystem::path NewDirectory() {
  static const OwnFolder folder;  // of the whole program
  static std::atomic<int> directories = 0;
  std::filesystem::path path = folder.path / std::to_string(++directories);
  std::filesystem::create_directory(path);
  return path;
}

}  // namespace

bool operator==(const Lines& a, const Lines& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), IsSameLine);
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

TemporaryDirectory::TemporaryDirectory() : path(NewDirectory()) {}
TemporaryDirectory::~TemporaryDirectory() { std::filesystem::remove_all(path); }

CapturedOutput::CapturedOutput(std::filesystem::path file)
    : file_(std::move(file)), original_(dup(fileno(stdout))) {
  std::fflush(stdout);
  // Opened as binary, so that nothing is added to line ends.
  std::FILE* const target = std::fopen(file_.string().c_str(), "wb");
  dup2(fileno(target), fileno(stdout));
  std::fclose(target);
}

CapturedOutput::~CapturedOutput() {
  std::fflush(stdout);
  dup2(original_, fileno(stdout));
  close(original_);
}

std::string CapturedOutput::Text() const {
  std::fflush(stdout);
  return ReadFile(file_);
}

ScenarioTest::ScenarioTest() { EnterStage(time, air); }

void ScenarioTest::SetUp() { time->SetLocalTime({2024, 3, 1, 9, 5, 3, 40}); }

void ScenarioTest::TearDown() {
  Listen(nullptr);
  lanvoss.reset();
  Advance(1000);  // events that are still on their way
  LeaveStage();
  EXPECT_EQ(air.LiveObjects(), 0U) << "platform objects leaked";
  EXPECT_EQ(air.EscapedExceptions(), kHandlersMayThrow ? expectedEscapes : 0);
  for (const std::string& line : host_.Log()) {
    EXPECT_TRUE(log::IsKnown(log::ParseLogLine(line))) << line;
  }
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  if (const std::string path = Environment("LANVOSS_TEST_LOG"); !path.empty()) {
    std::ofstream(path, std::ios::app) << "== " << test->name() << "\n" << output_.Text();
  }
  if (HasFailure()) {
    std::fprintf(stderr, "%s\n", output_.Text().c_str());
  }
}

void ScenarioTest::OpenIn(const std::string& cacheDirectory) {
  const Inside operation("getLanvossPtr");
  lanvoss = std::make_shared<Announced>(MakeOnStage(air, &RecordingHost::OnNotify, cacheDirectory));
}

Duration ScenarioTest::TimeOf(const std::function<void()>& operation) {
  const std::int32_t begun = time->Clock();
  operation();
  return {time->Clock() - begun};
}

Duration ScenarioTest::Ask(const std::string& request, const std::string& expected) {
  return TimeOf([&] { EXPECT_EQ(lanvoss->GetDeviceIp(request), expected); });
}

void ScenarioTest::Connect(const std::string& name) {
  if (lanvoss == nullptr) {
    Open();
  }
  ASSERT_EQ(lanvoss->GetDeviceIp(name), kAddress);
  Advance(100);
  ForgetOutput();
}

void ScenarioTest::At(const std::string& start, std::function<void()> act) {
  Listen([start, act, done = std::make_shared<std::atomic<bool>>(false)](
             const std::string& kind, const std::string& message) {
    if ((kind == start || message.starts_with(start)) && !done->exchange(true)) {
      act();
    }
  });
}

void ScenarioTest::Print(const std::string& kind, const std::string& message) {
  static std::mutex mutex;  // of the file
  if (const std::string path = Environment("LANVOSS_TEST_NOTIFICATIONS"); !path.empty()) {
    const std::lock_guard lock(mutex);
    std::ofstream(path, std::ios::app) << inside << "\t" << kind << "\t" << message << '\0';
  }
  if (kind != "info") {
    std::printf("<%s %s>\n", kind.c_str(), message.c_str());
  }
}

Lines ScenarioTest::Log() {
  Lines fresh(host_.Log(logBefore_));
  logBefore_ += fresh.size();
  return fresh;
}

Lines ScenarioTest::LogWithout(const std::string& line) {
  Advance(10);
  Lines log = Log();
  EXPECT_EQ(std::erase(log, line), 1U) << line;
  return log;
}

Lines ScenarioTest::Notified() {
  Lines fresh(host_.Others(notifiedBefore_));
  notifiedBefore_ += fresh.size();
  return fresh;
}

void ScenarioTest::ForgetOutput() {
  static_cast<void>(Log());
  static_cast<void>(Notified());
  static_cast<void>(Printed());
}

bool ScenarioTest::Logged(const std::string& line) {
  return std::ranges::any_of(host_.Log(),
                             [&](const std::string& logged) { return IsSameLine(logged, line); });
}

bool ScenarioTest::LoggedStart(const std::string& start) {
  return std::ranges::any_of(host_.Log(),
                             [&](const std::string& line) { return line.starts_with(start); });
}

std::string ScenarioTest::Printed() {
  const std::string text = output_.Text();
  return text.substr(std::exchange(printedBefore_, text.size()));
}

}  // namespace lanvoss::test
