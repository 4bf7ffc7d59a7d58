#include "stage_time.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <utility>

#include "backends/windows/windows_system.h"

namespace lanvoss::test {

StageTime::StageTime(std::shared_ptr<platform::System> system) : SystemOver(std::move(system)) {}

void StageTime::SetCurrentDirectory(const std::string& directory) {
  std::filesystem::current_path(directory);
}
void StageTime::SetAnsiCodePage(simulated::AnsiCodePage /*page*/) {
  FAIL() << "the system's code page is what it is";
}
void StageTime::FailEventCreation(unsigned /*nth*/) {
  FAIL() << "the system's events cannot be made to fail";
}

std::unique_ptr<events::Thread> StageTime::Start(std::string name, std::function<void()> body) {
  return threads_->Start(std::move(name), std::move(body));
}

std::shared_ptr<StageTime> NewTime() {
  return std::make_shared<StageTime>(windows::CreateSystem());
}

}  // namespace lanvoss::test
