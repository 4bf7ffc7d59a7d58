#include "recording.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <vector>

#include "texts.h"
#include "timeline/write_timeline.h"

namespace lanvoss::program {
namespace {

// More than an hour of watching; a link that is kept for a day must not fill the memory.
constexpr std::size_t kRecordedNotifications = 100'000;

struct Tape {
  std::mutex mutex;
  std::deque<Notification> notifications;  // guarded by it
};

// Never destroyed: the library may call its host late.
Tape& TheTape() {
  static auto& tape = *new Tape;
  return tape;
}

}  // namespace

void Record(const Notification& notification) {
  Tape& tape = TheTape();
  const std::lock_guard lock(tape.mutex);
  tape.notifications.push_back(notification);
  tape.notifications.back().message = ToUtf8(notification.message);
  if (tape.notifications.size() > kRecordedNotifications) {
    tape.notifications.pop_front();
  }
}

void SaveRecording(const std::string& file) {
  Tape& tape = TheTape();
  std::vector<Notification> recorded;
  {
    const std::lock_guard lock(tape.mutex);
    recorded.assign(tape.notifications.begin(), tape.notifications.end());
  }
  if (!recorded.empty()) {
    WriteTimeline(recorded, file);
  }
}

}  // namespace lanvoss::program
