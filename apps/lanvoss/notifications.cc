#include "notifications.h"

#include <atomic>
#include <utility>
#include <vector>

#include "clock.h"

namespace lanvoss::program {
namespace {

// Complete before the first notification, and never destroyed: one may come late.
std::vector<Listener>& Listeners() {
  static auto& listeners = *new std::vector<Listener>;
  return listeners;
}

int NumberOfThisThread() {
  static std::atomic<int> latest = 0;
  thread_local const int number = ++latest;
  return number;
}

}  // namespace

void Listen(Listener listener) { Listeners().push_back(std::move(listener)); }

void Hear(std::string kind, std::string message) {
  const Notification notification{LocalTimeUs(), NumberOfThisThread(), std::move(kind),
                                  std::move(message)};
  for (const Listener& listener : Listeners()) {
    listener(notification);
  }
}

}  // namespace lanvoss::program
