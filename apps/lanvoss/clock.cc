#include "clock.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "system.h"

namespace lanvoss::program {
namespace {

using std::chrono::duration_cast;
using std::chrono::floor;
using std::chrono::microseconds;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr int kTmFirstYear = 1900;

}  // namespace

std::int64_t LocalTimeUs() {
  const auto now = std::chrono::system_clock::now();
  const auto wholeSeconds = floor<seconds>(now);
  const std::tm local = LocalTime(std::chrono::system_clock::to_time_t(wholeSeconds));
  const sys_days day = std::chrono::year(kTmFirstYear + local.tm_year) /
                       std::chrono::month(static_cast<unsigned>(local.tm_mon + 1)) /
                       std::chrono::day(static_cast<unsigned>(local.tm_mday));
  const auto time = day.time_since_epoch() + std::chrono::hours(local.tm_hour) +
                    std::chrono::minutes(local.tm_min) + seconds(local.tm_sec);
  return duration_cast<microseconds>(time + (now - wholeSeconds)).count();
}

std::string FormatTime(std::int64_t localTimeUs) {
  const std::chrono::sys_time<microseconds> time{microseconds(localTimeUs)};
  const auto day = floor<std::chrono::days>(time);
  const year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  std::array<char, 40> text{};
  std::snprintf(
      text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06d", static_cast<int>(date.year()),
      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
      static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
      static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
  return text.data();
}

}  // namespace lanvoss::program
