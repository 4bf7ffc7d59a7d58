#include "stage_time.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <utility>

#include "backends/windows/windows_system.h"

namespace lanvoss::test {

StageTime::StageTime(std::shared_ptr<platform::System> system) : system_(std::move(system)) {}

void StageTime::SetCurrentDirectory(const std::string& directory) {
  std::filesystem::current_path(directory);
}
void StageTime::SetAnsiCodePage(simulated::AnsiCodePage /*page*/) {
  FAIL() << "the system's code page is what it is";
}
void StageTime::FailEventCreation(unsigned /*nth*/) {
  FAIL() << "the system's events cannot be made to fail";
}

std::int32_t StageTime::Clock() { return system_->Clock(); }
void StageTime::Sleep(std::uint32_t milliseconds) { system_->Sleep(milliseconds); }
std::unique_ptr<platform::Event> StageTime::CreateManualResetEvent(bool set) {
  return system_->CreateManualResetEvent(set);
}
platform::LocalTime StageTime::GetLocalTime() { return system_->GetLocalTime(); }
std::string StageTime::CurrentDirectory(std::size_t capacity) {
  return system_->CurrentDirectory(capacity);
}
platform::File StageTime::OpenFile(const std::string& path, platform::FileUse use) {
  return system_->OpenFile(path, use);
}
std::string StageTime::WideToAnsi(std::u16string_view wide) { return system_->WideToAnsi(wide); }
std::string StageTime::WideToUtf8(std::u16string_view wide) { return system_->WideToUtf8(wide); }
std::u16string StageTime::Utf8ToWide(std::string_view utf8) { return system_->Utf8ToWide(utf8); }
std::uint32_t StageTime::ProcessId() { return system_->ProcessId(); }
std::optional<platform::Ipv4Address> StageTime::ResolveHost(const std::string& host) {
  return system_->ResolveHost(host);
}
std::unique_ptr<platform::IcmpSocket> StageTime::OpenIcmpSocket() {
  return system_->OpenIcmpSocket();
}

std::unique_ptr<events::Thread> StageTime::Start(std::string name, std::function<void()> body) {
  return threads_->Start(std::move(name), std::move(body));
}

std::shared_ptr<StageTime> NewTime() {
  return std::make_shared<StageTime>(windows::CreateSystem());
}

}  // namespace lanvoss::test
