// The contract with the operating system: time, waiting, events, code pages.
//
// All blocking of the library goes through here, so whoever implements System owns time. Every
// operation may be called from any thread, several at once, and raises nothing but std::bad_alloc.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace lanvoss::platform {

inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFF;

// A local date and time, as the system's clock on the wall shows it.
struct LocalTime {
  std::uint16_t year = 0;
  std::uint16_t month = 0;  // 1 to 12
  std::uint16_t day = 0;    // 1 to 31
  std::uint16_t hour = 0;
  std::uint16_t minute = 0;
  std::uint16_t second = 0;
  std::uint16_t millisecond = 0;

  friend bool operator==(const LocalTime&, const LocalTime&) = default;
};

// A manual-reset event: once set it stays set, and every wait passes, until it is reset.
// Set and Reset never block. An event must be destroyed before its System.
class Event {
 public:
  virtual ~Event() = default;

  virtual void Set() = 0;
  virtual void Reset() = 0;
  // Blocks until the event is set, for `timeoutMs` milliseconds at most. False: it timed out.
  virtual bool Wait(std::uint32_t timeoutMs) = 0;
};

class System {
 public:
  virtual ~System() = default;

  // Milliseconds of wall time since the process started; wraps after 2^31.
  virtual std::int32_t Clock() = 0;
  // Blocks for `milliseconds`.
  virtual void Sleep(std::uint32_t milliseconds) = 0;
  // An event in the given state; none when the system has no more of them.
  virtual std::unique_ptr<Event> CreateManualResetEvent(bool set) = 0;

  virtual LocalTime GetLocalTime() = 0;
  // The current directory; empty when it does not fit into `capacity` bytes with its closing zero.
  virtual std::string CurrentDirectory(std::size_t capacity) = 0;

  // Into the system's ANSI code page; what it cannot represent becomes its default character.
  virtual std::string WideToAnsi(std::u16string_view wide) = 0;
  virtual std::string WideToUtf8(std::u16string_view wide) = 0;
  virtual std::u16string Utf8ToWide(std::string_view utf8) = 0;
};

}  // namespace lanvoss::platform
