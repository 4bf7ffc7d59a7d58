// A mutex that clang's thread-safety analysis understands: a field marked LANVOSS_GUARDED_BY can
// only be touched under its lock, or the build fails.
#pragma once

#include <mutex>

#if defined(__clang__)
#define LANVOSS_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define LANVOSS_THREAD_ATTRIBUTE(x)
#endif

#define LANVOSS_GUARDED_BY(x) LANVOSS_THREAD_ATTRIBUTE(guarded_by(x))
#define LANVOSS_REQUIRES(x) LANVOSS_THREAD_ATTRIBUTE(requires_capability(x))

namespace lanvoss {

class LANVOSS_THREAD_ATTRIBUTE(capability("mutex")) Mutex {
 public:
  void Lock() LANVOSS_THREAD_ATTRIBUTE(acquire_capability()) { mutex_.lock(); }
  void Unlock() LANVOSS_THREAD_ATTRIBUTE(release_capability()) { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

// Held for a few assignments at a time: never across a platform call that can block or call back,
// a wait, a sleep, a write to a file or to standard output, or a call into the host.
class LANVOSS_THREAD_ATTRIBUTE(scoped_lockable) Lock {
 public:
  explicit Lock(Mutex& mutex) LANVOSS_THREAD_ATTRIBUTE(acquire_capability(mutex)) : mutex_(mutex) {
    mutex_.Lock();
  }
  ~Lock() LANVOSS_THREAD_ATTRIBUTE(release_capability()) { mutex_.Unlock(); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  Mutex& mutex_;
};

}  // namespace lanvoss
