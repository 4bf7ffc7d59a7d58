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

struct Shared {
  std::mutex mutex;  // guards the tape
  std::deque<Notification> tape;
};

// Never destroyed: the library may call its host late.
Shared& TheShared() {
  static auto& shared = *new Shared;
  return shared;
}

}  // namespace

void Record(const Notification& notification) {
  Shared& shared = TheShared();
  const std::lock_guard lock(shared.mutex);
  shared.tape.push_back(notification);
  shared.tape.back().message = ToUtf8(notification.message);
  if (shared.tape.size() > kRecordedNotifications) {
    shared.tape.pop_front();
  }
}

void SaveRecording(const std::string& file) {
  Shared& shared = TheShared();
  std::vector<Notification> recorded;
  {
    const std::lock_guard lock(shared.mutex);
    recorded.assign(shared.tape.begin(), shared.tape.end());
  }
  if (!recorded.empty()) {
    WriteTimeline(recorded, file);
  }
}

}  // namespace lanvoss::program
