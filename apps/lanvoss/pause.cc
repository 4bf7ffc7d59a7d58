#include "pause.h"

#include <algorithm>
#include <thread>

#include "notice.h"

namespace lanvoss::program {

bool Pause(std::chrono::milliseconds time, std::stop_token ended) {
  using std::chrono::steady_clock;
  const auto end = steady_clock::now() + time;
  for (auto now = steady_clock::now(); now < end && !ended.stop_requested();
       now = steady_clock::now()) {
    const steady_clock::duration notice = std::chrono::milliseconds(kNoticeMs);
    std::this_thread::sleep_for(std::min(end - now, notice));
  }
  return !ended.stop_requested();
}

}  // namespace lanvoss::program
