#include "log/saved_log.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "log/find_message.h"
#include "log/stamp.h"
#include "platform/unicode.h"

namespace lanvoss::log {
namespace {

using nlohmann::json;

// A longer line is not understood: a hostile log must not cost more than its size.
constexpr std::size_t kLongestLine = 65'536;
// A higher thread number is a mistake.
constexpr std::uint64_t kHighestThread = 1'000'000;
// Of the objects within objects in which loggers write a message.
constexpr int kDeepestText = 3;
// Only the library's messages contain it. Some of its messages do not.
constexpr std::string_view kSignOfLibrary = "(watch) ";
constexpr std::int64_t kDayUs = 86'400'000'000;

// ---- The file

struct FileForm {
  std::string_view beginning;
  const char* advice;
};

constexpr FileForm kOtherForms[] = {
    {"\x1F\x8B", "this is a gzip file; unpack it first, with gunzip"},
    {"\x28\xB5\x2F\xFD", "this is a zstd file; unpack it first, with unzstd"},
    {"\xFD"
     "7zXZ",
     "this is an xz file; unpack it first, with unxz"},
    {"PK\x03\x04", "this is a zip archive; unpack it first"},
    {"LPKSHHRH", "this is a journal; write it as text first, with journalctl --file"},
};

std::string FromUtf16(std::string_view bytes, bool isBigEndian) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    units.push_back(static_cast<char16_t>(isBigEndian ? first << 8 | second : second << 8 | first));
  }
  return platform::Utf16ToUtf8(units);
}

// `text` without its byte order mark, in UTF-8 if that says another encoding.
std::string Decode(std::string_view text) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
  constexpr std::string_view kBigEndianMark = "\xFE\xFF";
  const bool isBigEndian = text.starts_with(kBigEndianMark);
  if (isBigEndian || text.starts_with(kLittleEndianMark)) {
    return FromUtf16(text.substr(kLittleEndianMark.size()), isBigEndian);
  }
  return std::string(text.substr(text.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0));
}

// ---- A line

// What a line gives.
struct Reading {
  std::optional<Stamp> stamp;
  Notification notification;
};

std::optional<Reading> ReadText(std::string_view text) {
  const auto message = FindMessage(text);
  if (!message) {
    return std::nullopt;
  }
  const std::string_view before = text.substr(0, text.size() - message->size());
  return Reading{FindStamp(before), {.kind = "info", .message = std::string(*message)}};
}

std::string TextOf(const json& object, const char* key) {
  const auto member = object.find(key);
  return member != object.end() && member->is_string() ? member->get<std::string>() : "";
}

// An object of this program's --json.
std::optional<Reading> ReadOwnObject(const json& object) {
  constexpr std::array<std::string_view, 5> kOwnKinds = {"info", "watch", "watchdone", "stopdone",
                                                         "deviceip"};
  Reading reading{FindStamp(TextOf(object, "time")), {}};
  Notification& notification = reading.notification;
  notification.kind = TextOf(object, "kind");
  notification.message = TextOf(object, "message");
  if (std::ranges::count(kOwnKinds, notification.kind) == 0 || !reading.stamp ||
      (notification.kind == "info" && !IsKnown(ParseLogLine(notification)))) {
    return std::nullopt;
  }
  const auto thread = object.find("thread");
  if (thread != object.end() && thread->is_number_unsigned() &&
      thread->get<std::uint64_t>() <= kHighestThread) {
    notification.thread = thread->get<int>();
  }
  return reading;
}

void CollectTexts(const json& object, int depth, std::vector<std::string>& texts) {
  for (const json& member : object) {
    if (member.is_string()) {
      texts.push_back(member.get<std::string>());
    } else if (member.is_object() && depth < kDeepestText) {
      CollectTexts(member, depth + 1, texts);
    }
  }
}

// An object of another logger: one of its texts has the message, and perhaps another one the time.
std::optional<Reading> ReadForeignObject(const json& object) {
  std::vector<std::string> texts;
  CollectTexts(object, 1, texts);
  std::optional<Reading> reading;
  std::optional<Stamp> stamp;
  for (const std::string& text : texts) {
    const std::size_t end = text.find_last_not_of("\r\n") + 1;
    auto found = reading ? std::nullopt : ReadText(std::string_view(text).substr(0, end));
    if (found) {
      reading = std::move(found);
    } else if (!stamp || !stamp->isDated) {
      stamp = FindStamp(text);
    }
  }
  if (reading && !reading->stamp) {
    reading->stamp = stamp;
  }
  return reading;
}

std::optional<Reading> ReadObject(const json& object) {
  auto reading = ReadOwnObject(object);
  return reading ? std::move(reading) : ReadForeignObject(object);
}

std::optional<Reading> ReadLine(std::string_view line) {
  if (line.size() > kLongestLine) {
    return std::nullopt;
  }
  const std::size_t brace = line.find('{');
  if (brace != std::string_view::npos && line.ends_with('}')) {
    const json object = json::parse(line.substr(brace), nullptr, /*allow_exceptions=*/false);
    auto reading = object.is_object() ? ReadObject(object) : std::nullopt;
    if (reading) {
      return reading;
    }
  }
  return ReadText(line);
}

// ---- The times

// Gives each line a time.
class Times {
 public:
  // A time of day is of the present day, or of the next one when it would be far in the past.
  std::int64_t Of(const std::optional<Stamp>& stamp) {
    if (stamp && stamp->isDated) {
      latestUs_ = stamp->timeUs;
    } else if (stamp) {
      std::int64_t timeUs = latestUs_ / kDayUs * kDayUs + stamp->timeUs;
      timeUs += timeUs + kDayUs / 2 < latestUs_ ? kDayUs : 0;
      latestUs_ = timeUs;
    }
    return latestUs_;
  }

 private:
  std::int64_t latestUs_ = 0;
};

// Lines before the first time have that time.
void FillInFirstTimes(std::vector<Notification>& notifications) {
  const auto isTimed = [](const Notification& notification) { return notification.timeUs != 0; };
  const auto first = std::ranges::find_if(notifications, isTimed);
  for (auto each = notifications.begin(); first != notifications.end() && each != first; ++each) {
    each->timeUs = first->timeUs;
  }
}

std::string_view TakeLine(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  line.remove_suffix(line.ends_with('\r') ? 1 : 0);
  return line;
}

}  // namespace

SavedLog ReadSavedLog(std::string_view text) {
  for (const FileForm& form : kOtherForms) {
    if (text.starts_with(form.beginning)) {
      throw std::runtime_error(form.advice);
    }
  }
  const std::string decoded = Decode(text);
  SavedLog saved;
  Times times;
  for (std::string_view rest = decoded; !rest.empty();) {
    const std::string_view line = TakeLine(rest);
    if (line.find_first_not_of(" \t") == std::string_view::npos) {
      continue;
    }
    ++saved.lines;
    if (auto reading = ReadLine(line)) {
      reading->notification.timeUs = times.Of(reading->stamp);
      saved.notifications.push_back(std::move(reading->notification));
    } else if (line.find(kSignOfLibrary) != std::string_view::npos) {
      ++saved.unclear;
    }
  }
  if (saved.notifications.empty()) {
    throw std::runtime_error("no line of the library's log in it; lines: " +
                             std::to_string(saved.lines));
  }
  FillInFirstTimes(saved.notifications);
  return saved;
}

}  // namespace lanvoss::log
