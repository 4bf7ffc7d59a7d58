#include "backends/posix/posix_system.h"

#include <chrono>
#include <condition_variable>
#include <ctime>
#include <fstream>
#include <iterator>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/unicode.h"

namespace lanvoss::posix {
namespace {

namespace chrono = std::chrono;

constexpr std::int64_t kMsPerSecond = 1000;
constexpr std::int64_t kNsPerMs = 1'000'000;

std::int64_t MsSinceBoot() {
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return now.tv_sec * kMsPerSecond + now.tv_nsec / kNsPerMs;
}

// When this process started, on the clock of MsSinceBoot; now, when the kernel does not tell.
std::int64_t ProcessStartMs() {
  std::ifstream file("/proc/self/stat");
  const std::string stat{std::istreambuf_iterator<char>(file), {}};
  // Fields are counted behind the program's name, which is in parentheses and may hold anything.
  constexpr int kFieldsBeforeStart = 19;
  std::istringstream fields(stat.substr(stat.rfind(')') + 1));
  std::string field;
  for (int i = 0; i < kFieldsBeforeStart; ++i) {
    fields >> field;
  }
  std::int64_t ticks = 0;
  if (!(fields >> ticks)) {
    return MsSinceBoot();
  }
  return ticks * kMsPerSecond / sysconf(_SC_CLK_TCK);
}

class PosixEvent final : public platform::Event {
 public:
  explicit PosixEvent(bool set) : set_(set) {}

  void Set() override {
    {
      const std::lock_guard lock(mutex_);
      set_ = true;
    }
    changed_.notify_all();
  }
  void Reset() override {
    const std::lock_guard lock(mutex_);
    set_ = false;
  }
  bool Wait(std::uint32_t timeoutMs) override {
    std::unique_lock lock(mutex_);
    const auto isSet = [this] { return set_; };
    if (timeoutMs == platform::kWaitForever) {
      changed_.wait(lock, isSet);
      return true;
    }
    return changed_.wait_for(lock, chrono::milliseconds(timeoutMs), isSet);
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool set_;  // guarded by the mutex
};

class PosixSystem final : public platform::System {
 public:
  std::int32_t Clock() override {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(MsSinceBoot() - startMs_));
  }

  void Sleep(std::uint32_t milliseconds) override {
    std::this_thread::sleep_for(chrono::milliseconds(milliseconds));
  }

  std::unique_ptr<platform::Event> CreateManualResetEvent(bool set) override {
    return std::make_unique<PosixEvent>(set);
  }

  platform::LocalTime GetLocalTime() override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    const auto part = [](std::int64_t value) { return static_cast<std::uint16_t>(value); };
    return {part(local.tm_year + 1900),  part(local.tm_mon + 1), part(local.tm_mday),
            part(local.tm_hour),         part(local.tm_min),     part(local.tm_sec),
            part(now.tv_nsec / kNsPerMs)};
  }

  std::string CurrentDirectory(std::size_t capacity) override {
    std::vector<char> buffer(capacity);
    return getcwd(buffer.data(), buffer.size()) == nullptr ? std::string() : buffer.data();
  }

  std::string WideToAnsi(std::u16string_view wide) override { return platform::Utf16ToUtf8(wide); }
  std::string WideToUtf8(std::u16string_view wide) override { return platform::Utf16ToUtf8(wide); }
  std::u16string Utf8ToWide(std::string_view utf8) override { return platform::Utf8ToUtf16(utf8); }

 private:
  const std::int64_t startMs_ = ProcessStartMs();
};

}  // namespace

std::shared_ptr<platform::System> CreateSystem() { return std::make_shared<PosixSystem>(); }

}  // namespace lanvoss::posix
