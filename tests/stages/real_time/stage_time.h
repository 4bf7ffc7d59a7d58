// A stage in real time, for the DLL, which has a clock of its own.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "backends/events/threads.h"
#include "backends/simulated/virtual_time.h"
#include "platform/system.h"

namespace lanvoss::test {

// The system itself. What a test cannot set in it fails the test, but for its clock: scenarios that
// look at stamps, or at how long something took, are not for this stage.
class StageTime final : public platform::System, public events::Threads {
 public:
  explicit StageTime(std::shared_ptr<platform::System> system);

  void SetLocalTime(const platform::LocalTime&) {}
  void SetCurrentDirectory(const std::string& directory);
  void SetAnsiCodePage(simulated::AnsiCodePage page);
  void FailEventCreation(unsigned nth);

  std::int32_t Clock() override;
  void Sleep(std::uint32_t milliseconds) override;
  std::unique_ptr<platform::Event> CreateManualResetEvent(bool set) override;
  platform::LocalTime GetLocalTime() override;
  std::string CurrentDirectory(std::size_t capacity) override;
  platform::File OpenFile(const std::string& path, platform::FileUse use) override;
  std::string WideToAnsi(std::u16string_view wide) override;
  std::string WideToUtf8(std::u16string_view wide) override;
  std::u16string Utf8ToWide(std::string_view utf8) override;
  std::uint32_t ProcessId() override;
  std::optional<platform::Ipv4Address> ResolveHost(const std::string& host) override;
  std::unique_ptr<platform::IcmpSocket> OpenIcmpSocket() override;

  std::unique_ptr<events::Thread> Start(std::string name, std::function<void()> body) override;

 private:
  const std::shared_ptr<platform::System> system_;
  const std::shared_ptr<events::Threads> threads_ = events::RealThreads();
};

std::shared_ptr<StageTime> NewTime();
// Real threads run side by side.
inline bool IsTimeFree() { return true; }
inline constexpr bool kIsTimeExact = false;

}  // namespace lanvoss::test
