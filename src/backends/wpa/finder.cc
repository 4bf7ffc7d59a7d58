#include "backends/wpa/finder.h"

#include "platform/error.h"

namespace lanvoss::wpa {
bool Finder::BeginPass() {
  {
    const std::lock_guard lock(mutex_);
    ++passes_;
  }
  return Apply(kQuickFind);
}

void Finder::Widen() { Apply(kWideFind); }

void Finder::EndPass() {
  {
    const std::lock_guard lock(mutex_);
    --passes_;
  }
  Apply();
}

void Finder::ChangePauses(int by) {
  {
    const std::lock_guard lock(mutex_);
    pauses_ += by;
  }
  Apply();
}

// Makes wpa_supplicant do what the passes and pauses ask for. `find`: what to look with, even if it
// looks already, since it tells of a device once in a search; null: only if it does not.
bool Finder::Apply(const char* find) {
  const std::lock_guard turn(switching_);
  bool wanted = false;
  {
    const std::lock_guard lock(mutex_);
    wanted = passes_ > 0 && pauses_ == 0;
    if (wanted == finds_ && !(wanted && find != nullptr)) {
      return true;
    }
    finds_ = wanted;
  }
  try {
    return supplicant_.Do(!wanted ? kStopFind : find == nullptr ? kWideFind : find);
  } catch (const platform::Error&) {
    return false;
  }
}

}  // namespace lanvoss::wpa
