// A System that owns time: when every thread that takes part waits, the clock jumps to the earliest
// deadline. A time-out of 100 seconds costs microseconds.
//
// Taking part: the thread that makes the VirtualTime, and every thread started through Start. No
// other thread may call it, and a thread that takes part must not block by other means for long,
// since time would wait for it.
//
//  - Seeded: one thread runs at a time; at every Sleep and Wait the seed picks who is next. The
//    same seed gives the same run, to the byte of the log.
//  - Free: the threads really run side by side, for the race and memory checkers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "backends/events/threads.h"
#include "platform/system.h"

namespace lanvoss::simulated {

enum class AnsiCodePage {
  kUtf8,
  kLatin1,  // one byte per character, '?' for all others
};

class VirtualTime final : public platform::System, public events::Threads {
 public:
  static std::shared_ptr<VirtualTime> Seeded(std::uint64_t seed);
  static std::shared_ptr<VirtualTime> Free();
  // Every thread started through it must have been waited for.
  ~VirtualTime() override;

  // The machine: set these before anything else uses it.
  void SetLocalTime(const platform::LocalTime& atClockZero);
  void SetAnsiCodePage(AnsiCodePage page);
  void SetCurrentDirectory(std::string directory);
  // The `nth` event asked for from now on cannot be had, nor any later one.
  void FailEventCreation(unsigned nth);

  // System
  std::int32_t Clock() override;
  void Sleep(std::uint32_t milliseconds) override;
  std::unique_ptr<platform::Event> CreateManualResetEvent(bool set) override;
  platform::LocalTime GetLocalTime() override;
  std::string CurrentDirectory(std::size_t capacity) override;
  // The machine's files, shared as the runtime library shares them.
  platform::File OpenFile(const std::string& path, platform::FileUse use) override;
  std::string WideToAnsi(std::u16string_view wide) override;
  std::string WideToUtf8(std::u16string_view wide) override;
  std::u16string Utf8ToWide(std::string_view utf8) override;
  std::uint32_t ProcessId() override;
  // Dotted addresses alone: there is no name service here, and no network either.
  std::optional<platform::Ipv4Address> ResolveHost(const std::string& host) override;
  std::unique_ptr<platform::IcmpSocket> OpenIcmpSocket() override { return nullptr; }

  // Threads
  std::unique_ptr<events::Thread> Start(std::string name, std::function<void()> body) override;

 private:
  class Scheduler;
  class TimedEvent;
  class TimedThread;

  explicit VirtualTime(std::optional<std::uint64_t> seed);

  const std::unique_ptr<Scheduler> scheduler_;
};

}  // namespace lanvoss::simulated
