// A stage in real time, for the DLL, which uses the real clock.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "backends/events/threads.h"
#include "backends/simulated/virtual_time.h"
#include "platform/system_over.h"

namespace lanvoss::test {

// The real system. A test that sets something in it fails, except for the clock: scenarios that
// check time stamps or durations are not for this stage.
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
