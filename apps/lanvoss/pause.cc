#include "pause.h"

#include <condition_variable>
#include <mutex>

namespace lanvoss::program {

bool Pause(std::chrono::milliseconds time, std::stop_token ended) {
  std::mutex mutex;
  std::condition_variable_any over;
  std::unique_lock lock(mutex);
  over.wait_for(lock, ended, time, [] { return false; });
  return !ended.stop_requested();
}

}  // namespace lanvoss::program
