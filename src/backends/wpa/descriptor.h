// Waiting for a file descriptor.
#pragma once

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <poll.h>

namespace lanvoss::wpa {

// Blocks until `descriptor` is ready for one of the `events`, its other side is gone, or `wake`
// becomes readable (-1: there is none). A signal does not change how long it blocks. False: the
// time is up, or `wake` is readable.
inline bool WaitFor(int descriptor, short events, std::chrono::steady_clock::time_point deadline,
                    int wake = -1) {
  std::array<pollfd, 2> ready{pollfd{descriptor, events, 0}, pollfd{wake, POLLIN, 0}};
  int count = -1;
  do {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    const auto leftMs = std::max<std::int64_t>(left.count(), 0);
    count = poll(ready.data(), ready.size(), static_cast<int>(leftMs));
  } while (count < 0 && errno == EINTR);
  return ready[0].revents != 0;
}

}  // namespace lanvoss::wpa
