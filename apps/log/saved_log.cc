#include "log/saved_log.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace lanvoss::log {
namespace {

using nlohmann::json;

constexpr std::int64_t kUsPerMs = 1'000;
// A higher thread number is a mistake.
constexpr std::uint64_t kHighestThread = 1'000'000;

// Moves `digits` decimal digits and the `closing` text after them out of `text`.
std::optional<int> TakeNumber(std::string_view& text, std::size_t digits,
                              std::string_view closing) {
  int number = 0;
  const std::string_view part = text.substr(0, digits);
  const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
  if (error != std::errc() || end != part.data() + digits || number < 0 ||
      !text.substr(digits).starts_with(closing)) {
    return std::nullopt;
  }
  text.remove_prefix(digits + closing.size());
  return number;
}

// Moves a time stamp out of `text`: date and time with `between` between them, a fraction of a
// second with `digits` digits, and the `closing` text.
std::optional<std::int64_t> TakeStamp(std::string_view& text, std::string_view between,
                                      std::size_t digits, std::string_view closing) {
  const std::pair<std::size_t, std::string_view> parts[] = {
      {4, "-"}, {2, "-"}, {2, between}, {2, ":"}, {2, ":"}, {2, "."}, {digits, closing}};
  int numbers[std::size(parts)] = {};
  for (std::size_t i = 0; i < std::size(parts); ++i) {
    const auto number = TakeNumber(text, parts[i].first, parts[i].second);
    if (!number) {
      return std::nullopt;
    }
    numbers[i] = *number;
  }
  const auto [year, month, day, hour, minute, second, fraction] = numbers;
  using namespace std::chrono;
  const year_month_day date(std::chrono::year(year),
                            std::chrono::month(static_cast<unsigned>(month)),
                            std::chrono::day(static_cast<unsigned>(day)));
  if (!date.ok()) {
    return std::nullopt;
  }
  const auto time = sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
  return microseconds(time.time_since_epoch()).count() + fraction * (digits == 3 ? kUsPerMs : 1);
}

// A diagnostic without a time may leave a blank at the beginning of the next line.
std::optional<Notification> ReadPrinted(std::string_view line) {
  line.remove_prefix(line.starts_with(' ') ? 1 : 0);
  if (!line.starts_with('[')) {
    return std::nullopt;
  }
  line.remove_prefix(1);
  const auto timeUs = TakeStamp(line, " ", 3, "] ");
  if (!timeUs) {
    return std::nullopt;
  }
  return Notification{.timeUs = *timeUs, .kind = "info", .message = std::string(line)};
}

std::optional<Notification> ReadJson(std::string_view line) {
  if (!line.starts_with('{')) {
    return std::nullopt;
  }
  const json object = json::parse(line, nullptr, /*allow_exceptions=*/false);
  const auto text = [&](const char* key) {
    const auto member = object.find(key);
    return member != object.end() && member->is_string() ? member->get<std::string>() : "";
  };
  if (!object.is_object() || !object.contains("message")) {
    return std::nullopt;
  }
  const std::string time = text("time");
  std::string_view rest = time;
  const auto timeUs = TakeStamp(rest, "T", 6, "");
  const json thread = object.value("thread", json());
  if (!timeUs || !rest.empty()) {
    return std::nullopt;
  }
  const bool isThread =
      thread.is_number_unsigned() && thread.get<std::uint64_t>() <= kHighestThread;
  return Notification{.timeUs = *timeUs,
                      .thread = isThread ? thread.get<int>() : 0,
                      .kind = text("kind"),
                      .message = text("message")};
}

}  // namespace

std::vector<Notification> ReadSavedLog(std::string_view text) {
  std::vector<Notification> notifications;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    auto notification = ReadPrinted(line);
    if (!notification) {
      notification = ReadJson(line);
    }
    if (notification) {
      notifications.push_back(std::move(*notification));
    }
  }
  if (notifications.empty()) {
    throw std::runtime_error("no log lines in it");
  }
  return notifications;
}

}  // namespace lanvoss::log
