#include "backends/windows/windows_system.h"

#include <ctime>
#include <string>
#include <vector>
#include <windows.h>

#include "backends/windows/icmp_socket.h"
#include "backends/windows/wide_text.h"

namespace lanvoss::windows {
namespace {

static_assert(CLOCKS_PER_SEC == 1000, "clock() counts milliseconds");
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
  // Of the runtime library: wall time here, not processor time.
  std::int32_t Clock() override { return std::clock(); }

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
};

}  // namespace

std::shared_ptr<platform::System> CreateSystem() { return std::make_shared<WindowsSystem>(); }

}  // namespace lanvoss::windows
