#include "clock.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "platform/since_epoch.h"
#include "system.h"

namespace lanvoss::program {
namespace {

using std::chrono::duration_cast;
using std::chrono::floor;
using std::chrono::microseconds;
using std::chrono::seconds;
using std::chrono::year_month_day;

constexpr int kTmFirstYear = 1900;

}  // namespace

std::int64_t LocalTimeUs(std::chrono::system_clock::time_point time) {
  const auto wholeSeconds = floor<seconds>(time);
  const std::tm local = LocalTime(std::chrono::system_clock::to_time_t(wholeSeconds));
  const auto part = [](int value) { return static_cast<std::uint16_t>(value); };
  const auto sinceEpoch = platform::SinceEpoch(
      {part(kTmFirstYear + local.tm_year), part(local.tm_mon + 1), part(local.tm_mday),
       part(local.tm_hour), part(local.tm_min), part(local.tm_sec)});
  return duration_cast<microseconds>(sinceEpoch + (time - wholeSeconds)).count();
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
