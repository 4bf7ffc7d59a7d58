#include "log/stamp.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace lanvoss::log {
namespace {

constexpr std::string_view kDateForm = "0000-00-00 ";  // before the time of day
constexpr std::string_view kTimeForm = "00:00:00";
constexpr int kFractionDigits = 6;  // of microseconds

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

// Whether `text` begins as `form`: a digit for each 0; "-" also stands for "/", and a blank for
// "T".
bool HasForm(std::string_view text, std::string_view form) {
  return text.size() >= form.size() &&
         std::equal(form.begin(), form.end(), text.begin(), [](char wanted, char character) {
           return wanted == '0' ? IsDigit(character)
                                : character == wanted || (wanted == '-' && character == '/') ||
                                      (wanted == ' ' && character == 'T');
         });
}

int NumberAt(std::string_view text, std::size_t at, std::size_t digits) {
  int number = 0;
  for (const char digit : text.substr(at, digits)) {
    number = number * 10 + (digit - '0');
  }
  return number;
}

// The microseconds of ".123", ",123456" or of nothing.
std::int64_t FractionUs(std::string_view text) {
  std::int64_t us = 0;
  const bool isFraction = !text.empty() && (text.front() == '.' || text.front() == ',');
  text.remove_prefix(isFraction ? 1 : 0);
  for (int i = 0; i < kFractionDigits; ++i) {
    const bool hasDigit = isFraction && !text.empty() && IsDigit(text.front());
    us = us * 10 + (hasDigit ? text.front() - '0' : 0);
    text.remove_prefix(hasDigit ? 1 : 0);
  }
  return us;
}

// Of the date at the end of `text`.
std::optional<std::int64_t> DateUs(std::string_view text) {
  if (text.size() < kDateForm.size()) {
    return std::nullopt;
  }
  text.remove_prefix(text.size() - kDateForm.size());
  if (!HasForm(text, kDateForm)) {
    return std::nullopt;
  }
  using namespace std::chrono;
  const year_month_day date(year(NumberAt(text, 0, 4)),
                            month(static_cast<unsigned>(NumberAt(text, 5, 2))),
                            day(static_cast<unsigned>(NumberAt(text, 8, 2))));
  if (!date.ok()) {
    return std::nullopt;
  }
  return microseconds(sys_days(date).time_since_epoch()).count();
}

std::optional<Stamp> StampAt(std::string_view text, std::size_t at) {
  const std::string_view time = text.substr(at);
  const bool goesOnBefore = at > 0 && (IsDigit(text[at - 1]) || text[at - 1] == ':');
  if (!HasForm(time, kTimeForm) || goesOnBefore || time.substr(kTimeForm.size()).starts_with(':')) {
    return std::nullopt;  // a part of a hardware address is no time
  }
  const int hour = NumberAt(time, 0, 2);
  const int minute = NumberAt(time, 3, 2);
  const int second = NumberAt(time, 6, 2);
  if (hour >= 24 || minute >= 60 || second > 60) {  // 60 is a leap second
    return std::nullopt;
  }
  using namespace std::chrono;
  const microseconds ofDay = hours(hour) + minutes(minute) + seconds(second);
  const std::int64_t us = ofDay.count() + FractionUs(time.substr(kTimeForm.size()));
  const auto date = DateUs(text.substr(0, at));
  return Stamp{date.value_or(0) + us, date.has_value()};
}

}  // namespace

std::optional<Stamp> FindStamp(std::string_view text) {
  std::optional<Stamp> best;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto stamp = StampAt(text, at);
    if (stamp && (stamp->isDated || !best || !best->isDated)) {
      best = stamp;
    }
  }
  return best;
}

}  // namespace lanvoss::log
