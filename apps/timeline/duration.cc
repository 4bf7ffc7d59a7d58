#include "timeline/duration.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdio>

namespace lanvoss::timeline {
namespace {

constexpr std::int64_t kSecondsPerMinute = 60;
constexpr std::int64_t kSecondsPerHour = 3'600;
// Shorter durations are rounded to a hundredth of a second, longer ones to a tenth.
constexpr std::int64_t kCoarseUs = 10 * kUsPerSecond;

// With zeros before it.
std::string Padded(std::int64_t number, std::size_t digits) {
  const std::string text = std::to_string(number);
  return std::string(digits - std::min(digits, text.size()), '0') + text;
}

std::string Seconds(std::int64_t us, int digits) {
  std::array<char, 64> print{};
  std::snprintf(print.data(), print.size(), "%.*f", digits, static_cast<double>(us) / kUsPerSecond);
  return print.data();
}

// "3 h 5 min", or without the smaller ones when there are none.
std::string TwoUnits(std::int64_t large, const char* largeUnit, std::int64_t small,
                     const char* smallUnit) {
  return std::to_string(large) + largeUnit +
         (small > 0 ? " " + std::to_string(small) + smallUnit : "");
}

}  // namespace

std::string DurationText(std::int64_t us) {
  const std::int64_t seconds = (us + kUsPerSecond / 2) / kUsPerSecond;
  if (us < kUsPerSecond) {
    return std::to_string(us / kUsPerMs) + " ms";
  }
  if (seconds < kSecondsPerMinute) {
    std::string text = Seconds(us, us < kCoarseUs ? 2 : 1);
    text.erase(text.find_last_not_of('0') + 1);
    text.erase(text.find_last_not_of('.') + 1);
    return text + " s";
  }
  if (seconds < kSecondsPerHour) {
    return TwoUnits(seconds / kSecondsPerMinute, " min", seconds % kSecondsPerMinute, " s");
  }
  return TwoUnits(seconds / kSecondsPerHour, " h", seconds % kSecondsPerHour / kSecondsPerMinute,
                  " min");
}

std::string PlaceText(std::int64_t us, std::int64_t stepUs) {
  int digits = 0;
  for (std::int64_t step = stepUs; step < kUsPerSecond && digits < 3; step *= 10) {
    ++digits;
  }
  const std::int64_t seconds = us / kUsPerSecond;
  if (seconds < kSecondsPerMinute) {
    return Seconds(us, digits) + " s";
  }
  const std::string fraction = Seconds(us % kUsPerSecond, digits).substr(1);
  const std::string rest = ":" + Padded(seconds % kSecondsPerMinute, 2) + fraction;
  const std::int64_t minutes = seconds / kSecondsPerMinute;
  if (seconds < kSecondsPerHour) {
    return std::to_string(minutes) + rest;
  }
  return std::to_string(seconds / kSecondsPerHour) + ":" + Padded(minutes % 60, 2) + rest;
}

std::string ClockText(std::int64_t us) {
  using std::chrono::floor;
  const std::chrono::sys_time<std::chrono::microseconds> time{std::chrono::microseconds(us)};
  const auto day = floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(floor<std::chrono::milliseconds>(time - day));
  return Padded(static_cast<int>(date.year()), 4) + "-" +
         Padded(static_cast<unsigned>(date.month()), 2) + "-" +
         Padded(static_cast<unsigned>(date.day()), 2) + " " + Padded(clock.hours().count(), 2) +
         ":" + Padded(clock.minutes().count(), 2) + ":" + Padded(clock.seconds().count(), 2) + "." +
         Padded(clock.subseconds().count(), 3);
}

}  // namespace lanvoss::timeline
