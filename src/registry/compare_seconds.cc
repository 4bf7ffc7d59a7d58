#include "registry/compare_seconds.h"

#include <algorithm>
#include <chrono>
#include <limits>

#include "platform/since_epoch.h"

namespace lanvoss {
namespace {

// A file time counts 100 ns units from 1601; the years that convert into one.
constexpr int kFirstYear = 1601;
constexpr int kLastYear = 30827;
constexpr std::int64_t kUnixEpochFileTime = 116'444'736'000'000'000;
constexpr std::int64_t kFileTimePerMs = 10'000;
constexpr std::int64_t kFileTimePerSecond = 10'000'000;

// 0 for a date and time that does not exist.
std::int64_t FileTime(const platform::LocalTime& time) {
  namespace chrono = std::chrono;
  const chrono::year_month_day date{chrono::year(time.year), chrono::month(time.month),
                                    chrono::day(time.day)};
  if (!date.ok() || time.year < kFirstYear || time.year > kLastYear || time.hour > 23 ||
      time.minute > 59 || time.second > 59 || time.millisecond > 999) {
    return 0;
  }
  return kUnixEpochFileTime + platform::SinceEpoch(time).count() * kFileTimePerMs;
}

std::int64_t UnixSeconds(const platform::LocalTime& time) {
  return (FileTime(time) - kUnixEpochFileTime) / kFileTimePerSecond;
}

}  // namespace

std::int32_t CompareSeconds(const platform::LocalTime& a, const platform::LocalTime& b) {
  using Limits = std::numeric_limits<std::int32_t>;
  const std::int64_t difference = UnixSeconds(a) - UnixSeconds(b);
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(difference, Limits::min(), Limits::max()));
}

}  // namespace lanvoss
