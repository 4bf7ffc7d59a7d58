#include "recording_host.h"

#include <utility>

namespace lanvoss::test {
namespace {

RecordingHost* current = nullptr;

std::vector<std::string> From(const std::vector<std::string>& texts, std::size_t from) {
  return {texts.begin() + static_cast<std::ptrdiff_t>(from), texts.end()};
}

}  // namespace

RecordingHost::RecordingHost(Listener first, Records records)
    : first_(std::move(first)), records_(records) {
  current = this;
}

RecordingHost::~RecordingHost() { current = nullptr; }

void RecordingHost::OnNotify(std::string kind, std::string message) {
  RecordingHost& host = *current;
  std::shared_ptr<const Listener> later;
  {
    const std::lock_guard lock(host.mutex_);
    later = host.later_;
    if (host.records_ == Records::kAll && kind == "info") {
      host.log_.push_back(message);
    } else if (host.records_ == Records::kAll) {
      host.others_.push_back(kind + " " + message);
    }
  }
  if (host.first_) {
    host.first_(kind, message);
  }
  if (later != nullptr) {
    (*later)(kind, message);
  }
}

void RecordingHost::Listen(Listener listener) {
  auto later = listener ? std::make_shared<const Listener>(std::move(listener)) : nullptr;
  const std::lock_guard lock(mutex_);
  later_ = std::move(later);
}

std::vector<std::string> RecordingHost::Log(std::size_t from) const {
  const std::lock_guard lock(mutex_);
  return From(log_, from);
}

std::size_t RecordingHost::LogLength() const {
  const std::lock_guard lock(mutex_);
  return log_.size();
}

std::vector<std::string> RecordingHost::Others(std::size_t from) const {
  const std::lock_guard lock(mutex_);
  return From(others_, from);
}

}  // namespace lanvoss::test
