#include "backends/windows/windows_system.h"

#include <algorithm>
#include <chrono>
#include <io.h>
#include <share.h>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

#include "backends/windows/icmp_socket.h"
#include "backends/windows/wide_text.h"

namespace lanvoss::windows {
namespace {

static_assert(platform::kWaitForever == INFINITE);

class WindowsEvent final : public platform::Event {
 public:
  explicit WindowsEvent(HANDLE event) : event_(event) {}
  ~WindowsEvent() override { CloseHandle(event_); }
  WindowsEvent(const WindowsEvent&) = delete;
  WindowsEvent& operator=(const WindowsEvent&) = delete;

  void Set() override { SetEvent(event_); }
  void Reset() override { ResetEvent(event_); }
  bool Wait(std::uint32_t timeoutMs) override {
    return WaitForSingleObject(event_, timeoutMs) == WAIT_OBJECT_0;
  }

 private:
  const HANDLE event_;
};

std::int64_t SteadyMs() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

// When this process started, on the clock of SteadyMs. The system reports it as a time of
// day, which may have been corrected since then; later corrections do not count.
std::int64_t ProcessStartMs() {
  constexpr std::int64_t kFileTimePerMs = 10'000;
  const auto number = [](const FILETIME& time) {
    return std::int64_t{time.dwHighDateTime} << 32 | std::int64_t{time.dwLowDateTime};
  };
  FILETIME created{};
  FILETIME unused[3] = {};
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  if (GetProcessTimes(GetCurrentProcess(), &created, &unused[0], &unused[1], &unused[2]) == FALSE) {
    created = now;
  }
  return SteadyMs() - std::max<std::int64_t>(0, (number(now) - number(created)) / kFileTimePerMs);
}

bool IsOnDisk(std::FILE* file) {
  return GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)))) == FILE_TYPE_DISK;
}

std::string Narrow(UINT codePage, std::u16string_view wide) {
  const int length = static_cast<int>(wide.size());
  const auto convert = [&](char* buffer, int capacity) {
    return WideCharToMultiByte(codePage, 0, AsWide(wide.data()), length, buffer, capacity, nullptr,
                               nullptr);
  };
  std::string narrow(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  convert(narrow.data(), static_cast<int>(narrow.size()));
  return narrow;
}

class WindowsSystem final : public platform::System {
 public:
  std::int32_t Clock() override {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(SteadyMs() - startMs_));
  }

  void Sleep(std::uint32_t milliseconds) override { ::Sleep(milliseconds); }

  std::unique_ptr<platform::Event> CreateManualResetEvent(bool set) override {
    const HANDLE event = CreateEventW(nullptr, TRUE, set ? TRUE : FALSE, nullptr);
    return event == nullptr ? nullptr : std::make_unique<WindowsEvent>(event);
  }

  platform::LocalTime GetLocalTime() override {
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    return {now.wYear,   now.wMonth,  now.wDay,         now.wHour,
            now.wMinute, now.wSecond, now.wMilliseconds};
  }

  std::string CurrentDirectory(std::size_t capacity) override {
    std::vector<char> buffer(capacity);
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(capacity), buffer.data());
    return length < capacity ? std::string(buffer.data(), length) : std::string();
  }

  platform::File OpenFile(const std::string& path, platform::FileUse use) override {
    const char* const mode = use == platform::FileUse::kReplace ? "wb+" : "rb+";
    platform::File file(_fsopen(path.c_str(), mode, _SH_DENYRW));
    return file != nullptr && IsOnDisk(file.get()) ? std::move(file) : nullptr;
  }

  std::string WideToAnsi(std::u16string_view wide) override { return Narrow(CP_ACP, wide); }
  std::string WideToUtf8(std::u16string_view wide) override { return Narrow(CP_UTF8, wide); }

  std::u16string Utf8ToWide(std::string_view utf8) override {
    const int length = static_cast<int>(utf8.size());
    const auto convert = [&](char16_t* buffer, int capacity) {
      return MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, AsWide(buffer), capacity);
    };
    std::u16string wide(static_cast<std::size_t>(convert(nullptr, 0)), u'\0');
    convert(wide.data(), static_cast<int>(wide.size()));
    return wide;
  }

  std::uint32_t ProcessId() override { return GetCurrentProcessId(); }

  std::optional<platform::Ipv4Address> ResolveHost(const std::string& host) override {
    return windows::ResolveHost(host);
  }
  std::unique_ptr<platform::IcmpSocket> OpenIcmpSocket() override {
    return windows::OpenIcmpSocket();
  }

 private:
  const std::int64_t startMs_ = ProcessStartMs();
};

}  // namespace

std::shared_ptr<platform::System> CreateSystem() { return std::make_shared<WindowsSystem>(); }

}  // namespace lanvoss::windows
