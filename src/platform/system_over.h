// A System over another one, for classes that replace a part of it.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/system.h"

namespace lanvoss::platform {

class SystemOver : public System {
 public:
  explicit SystemOver(std::shared_ptr<System> beneath) : beneath_(std::move(beneath)) {}

  std::int32_t Clock() override { return beneath_->Clock(); }
  void Sleep(std::uint32_t milliseconds) override { beneath_->Sleep(milliseconds); }
  std::unique_ptr<Event> CreateManualResetEvent(bool set) override {
    return beneath_->CreateManualResetEvent(set);
  }
  LocalTime GetLocalTime() override { return beneath_->GetLocalTime(); }
  std::string CurrentDirectory(std::size_t capacity) override {
    return beneath_->CurrentDirectory(capacity);
  }
  File OpenFile(const std::string& path, FileUse use) override {
    return beneath_->OpenFile(path, use);
  }
  std::string WideToAnsi(std::u16string_view wide) override { return beneath_->WideToAnsi(wide); }
  std::string WideToUtf8(std::u16string_view wide) override { return beneath_->WideToUtf8(wide); }
  std::u16string Utf8ToWide(std::string_view utf8) override { return beneath_->Utf8ToWide(utf8); }
  std::uint32_t ProcessId() override { return beneath_->ProcessId(); }
  std::optional<Ipv4Address> ResolveHost(const std::string& host) override {
    return beneath_->ResolveHost(host);
  }
  std::unique_ptr<IcmpSocket> OpenIcmpSocket() override { return beneath_->OpenIcmpSocket(); }

 private:
  const std::shared_ptr<System> beneath_;
};

}  // namespace lanvoss::platform
