#include "backends/wpa/finder.h"

#include "platform/error.h"

namespace lanvoss::wpa {
bool Finder::BeginPass() {
  {
    const std::lock_guard lock(mutex_);
    ++passes_;
    find_ = kQuickFind;
  }
  return Apply(true);
}

void Finder::Widen() {
  {
    const std::lock_guard lock(mutex_);
    find_ = kWideFind;
  }
  Apply(true);
}

void Finder::EndPass() {
  {
    const std::lock_guard lock(mutex_);
    --passes_;
  }
  Apply(false);
}

void Finder::ChangePauses(int by) {
  {
    const std::lock_guard lock(mutex_);
    pauses_ += by;
  }
  Apply(false);
}

// Starts or stops the search, as the passes and pauses need it. `again`: also if it runs, because
// it reports a device once in a search.
bool Finder::Apply(bool again) {
  const std::lock_guard turn(switching_);
  const char* command = kStopFind;
  {
    const std::lock_guard lock(mutex_);
    const bool wanted = passes_ > 0 && pauses_ == 0;
    if (wanted == finds_ && !(wanted && again)) {
      return true;
    }
    finds_ = wanted;
    command = wanted ? find_ : kStopFind;
  }
  try {
    return supplicant_.Do(command);
  } catch (const platform::Error&) {
    return false;
  }
}

}  // namespace lanvoss::wpa
