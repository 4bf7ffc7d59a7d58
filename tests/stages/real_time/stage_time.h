// A stage in real time, for the DLL, which has a clock of its own.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "backends/events/threads.h"
#include "backends/simulated/virtual_time.h"
#include "platform/system_over.h"

namespace lanvoss::test {

// The system itself. What a test cannot set in it fails the test, but for its clock: scenarios that
// look at stamps, or at how long something took, are not for this stage.
class StageTime final : public platform::SystemOver, public events::Threads {
 public:
  explicit StageTime(std::shared_ptr<platform::System> system);

  void SetLocalTime(const platform::LocalTime&) {}
  void SetCurrentDirectory(const std::string& directory);
  void SetAnsiCodePage(simulated::AnsiCodePage page);
  void FailEventCreation(unsigned nth);

  std::unique_ptr<events::Thread> Start(std::string name, std::function<void()> body) override;

 private:
  const std::shared_ptr<events::Threads> threads_ = events::RealThreads();
};

std::shared_ptr<StageTime> NewTime();
// Real threads run side by side.
inline bool IsTimeFree() { return true; }
inline constexpr bool kIsTimeExact = false;

}  // namespace lanvoss::test
