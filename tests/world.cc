#include "world.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <unistd.h>
#include <utility>

#include "platform/platform.h"

namespace lanvoss::test {
namespace {

// The host's callback is a plain function, so the world it belongs to has to be found.
World* current = nullptr;
std::shared_ptr<platform::System> currentSystem;
std::shared_ptr<platform::WiFiDirect> currentRadio;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody sets it
  return value == nullptr ? "" : value;
}

std::filesystem::path NewDirectory() {
  std::string path = std::filesystem::temp_directory_path() / "lanvoss-test-XXXXXX";
  return mkdtemp(path.data());
}

}  // namespace

bool IsTimeFree() { return Environment("LANVOSS_TEST_TIME") == "free"; }

std::shared_ptr<simulated::VirtualTime> NewTime() {
  const std::string seed = Environment("LANVOSS_TEST_SEED");
  return IsTimeFree() ? simulated::VirtualTime::Free()
                      : simulated::VirtualTime::Seeded(seed.empty() ? 1 : std::stoull(seed));
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

CapturedOutput::CapturedOutput() : original_(dup(STDOUT_FILENO)), file_(std::tmpfile()) {
  std::fflush(stdout);
  dup2(fileno(file_), STDOUT_FILENO);
}

CapturedOutput::~CapturedOutput() {
  std::fflush(stdout);
  dup2(original_, STDOUT_FILENO);
  close(original_);
  std::fclose(file_);
}

std::string CapturedOutput::Text() const {
  std::fflush(stdout);
  const int file = fileno(file_);
  std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
  text.resize(static_cast<std::size_t>(pread(file, text.data(), text.size(), 0)));
  return text;
}

World::World() {
  current = this;
  currentSystem = air.System();
  currentRadio = air.Radio();
}

World::~World() {
  current = nullptr;
  currentSystem.reset();
  currentRadio.reset();
}

void World::SetUp() { time->SetLocalTime({2024, 3, 1, 9, 5, 3, 40}); }

void World::TearDown() {
  Listen(nullptr);
  lanvoss.reset();
  Pass(1000);  // events that are still on their way
  EXPECT_EQ(air.LiveObjects(), 0U) << "platform objects leaked";
  EXPECT_EQ(air.EscapedExceptions(), expectedEscapes);
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  if (const std::string path = Environment("LANVOSS_TEST_LOG"); !path.empty()) {
    std::ofstream(path, std::ios::app) << "== " << test->name() << "\n" << output_.Text();
  }
  if (HasFailure()) {
    std::fprintf(stderr, "%s\n", output_.Text().c_str());
  }
}

void World::Open() { lanvoss = getLanvossPtr(&World::OnNotify, directory.path.string()); }

void World::Connect(const std::string& name) {
  if (lanvoss == nullptr) {
    Open();
  }
  ASSERT_EQ(lanvoss->GetDeviceIp(name), kAddress);
  Pass(100);
  Log();
  Heard();
  Printed();
}

void World::Listen(Listener listener) {
  const std::lock_guard lock(mutex_);
  listener_ = std::move(listener);
}

void World::OnNotify(std::string kind, std::string message) {
  Listener listener;
  {
    const std::lock_guard lock(current->mutex_);
    if (kind == "info") {
      current->log_.push_back(message);
    } else {
      current->heard_.push_back(kind + " " + message);
      std::printf("<%s %s>\n", kind.c_str(), message.c_str());
    }
    listener = current->listener_;
  }
  if (listener) {
    listener(kind, message);
  }
}

Lines World::Log() {
  const std::lock_guard lock(mutex_);
  const Lines fresh(log_.begin() + static_cast<std::ptrdiff_t>(logBefore_), log_.end());
  logBefore_ = log_.size();
  return fresh;
}

Lines World::LogWithout(const std::string& line) {
  Pass(10);
  Lines log = Log();
  EXPECT_EQ(std::erase(log, line), 1U) << line;
  return log;
}

Lines World::Heard() {
  const std::lock_guard lock(mutex_);
  return std::exchange(heard_, {});
}

bool World::Logged(const std::string& line) {
  const std::lock_guard lock(mutex_);
  return std::find(log_.begin(), log_.end(), line) != log_.end();
}

std::string World::Printed() {
  const std::string text = output_.Text();
  return text.substr(std::exchange(printedBefore_, text.size()));
}

}  // namespace lanvoss::test

namespace lanvoss::platform {

Platform CreatePlatform() { return {test::currentSystem, test::currentRadio}; }

}  // namespace lanvoss::platform
