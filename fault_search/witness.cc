#include "witness.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <regex>

namespace lanvoss::search {

std::optional<Reaction> Witness::OnNotify(const std::string& kind, const std::string& message) {
  Note("<" + kind + " " + message + ">");
  const std::lock_guard lock(mutex_);
  if (objects_ == 0) {
    violations_.push_back("notified after the object was gone: " + kind + " " + message);
  }
  if (kind == "info") {
    Learn(message);
    FollowWaits(message);
  } else if (kind == "deviceip") {
    ++linkUps_;
  }
  ++notifications_;
  const auto due =
      std::find_if(case_.reactions.begin(), case_.reactions.end(),
                   [this](const Reaction& reaction) { return reaction.nth == notifications_; });
  return reacts_ && due != case_.reactions.end() ? std::optional(*due) : std::nullopt;
}

// The lock must be held.
void Witness::Learn(const std::string& info) {
  static const std::regex device(R"((?:\d+-)?\d+ (?:WatchDeviceAdded|Device):(.*) id:(.*))");
  std::smatch match;
  if (std::regex_match(info, match, device)) {
    devices_[match[2]] = match[1];
  }
  if (const std::string wrong = CheckLine(info); !wrong.empty()) {
    violations_.push_back(wrong);
  }
  if (const std::string wrong = CheckConnected(info, isDown_); !wrong.empty() && loggedAtOnce_) {
    violations_.push_back(wrong);
  }
}

// The calling thread's innermost operation, or the end. The lock must be held.
std::vector<Witness::Wait>::iterator Witness::OwnWait() {
  const auto own = std::find_if(waits_.rbegin(), waits_.rend(), [](const Wait& wait) {
    return wait.thread == std::this_thread::get_id();
  });
  return own == waits_.rend() ? waits_.end() : std::prev(own.base());
}

// The lock must be held.
void Witness::FollowWaits(const std::string& info) {
  const auto own = OwnWait();
  if (own != waits_.end() && BeginsWait(info)) {
    own->begunAt = time_.Clock();
  } else if (EndsWaits(info)) {
    for (Wait& wait : waits_) {
      if (wait.thread != std::this_thread::get_id() && wait.begunAt && !wait.signalledAt) {
        wait.signalledAt = time_.Clock();
      }
    }
  }
}

void Witness::OnOperationBegins() {
  const std::lock_guard lock(mutex_);
  waits_.push_back({.thread = std::this_thread::get_id()});
}

std::string Witness::OnOperationEnds() {
  const std::lock_guard lock(mutex_);
  const auto own = OwnWait();
  const Wait wait = *own;
  waits_.erase(own);
  return wait.signalledAt && loggedAtOnce_
             ? CheckRelease(time_.Clock() - *wait.begunAt, *wait.signalledAt - *wait.begunAt)
             : std::string();
}

void Witness::OnObjectBegins() {
  const std::lock_guard lock(mutex_);
  ++objects_;
}
void Witness::OnObjectEnds() {
  const std::lock_guard lock(mutex_);
  --objects_;
}

int Witness::Objects() const {
  const std::lock_guard lock(mutex_);
  return objects_;
}

void Witness::Excuse(std::int64_t milliseconds) {
  const std::lock_guard lock(mutex_);
  excusedMs_ += milliseconds;
}
std::int64_t Witness::ExcusedMs() const {
  const std::lock_guard lock(mutex_);
  return excusedMs_;
}

void Witness::Note(const std::string& event) {
  char stamp[16];
  std::snprintf(stamp, sizeof stamp, "%9d ms ", time_.Clock());
  const std::lock_guard lock(mutex_);
  events_.push_back(stamp + event);
}

void Witness::Violate(const std::string& what) {
  if (what.empty()) {
    return;
  }
  Note("VIOLATION: " + what);
  const std::lock_guard lock(mutex_);
  violations_.push_back(what);
}

void Witness::StopReacting() {
  const std::lock_guard lock(mutex_);
  reacts_ = false;
}

unsigned Witness::LinkUps() const {
  const std::lock_guard lock(mutex_);
  return linkUps_;
}
std::map<std::string, std::string> Witness::Devices() const {
  const std::lock_guard lock(mutex_);
  return devices_;
}
Lines Witness::Violations() const {
  const std::lock_guard lock(mutex_);
  return violations_;
}
Lines Witness::Events() const {
  const std::lock_guard lock(mutex_);
  return events_;
}

}  // namespace lanvoss::search
