#include "registry/cache_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <vector>

#include "base/text.h"
#include "registry/split_text.h"

namespace lanvoss {
namespace {

// An estimate, so that the content seldom grows. A longer line only costs time.
constexpr std::size_t kUsualLineLength = 128;

// Whether the path is the intended file. A file name alone means that the current directory was too
// long, and would be a file in the root directory. A zero byte would cut the path.
bool IsPlace(const std::string& path) {
  return path != kCacheFileName && path.find('\0') == std::string::npos;
}

platform::File OpenCacheFile(platform::System& system, const std::string& path,
                             platform::FileUse use) {
  return IsPlace(path) ? system.OpenFile(path, use) : nullptr;
}

// 0 for a size of more than 32 bits, or an unknown size.
std::size_t SizeOf(std::FILE* file) {
  if (std::fseek(file, 0, SEEK_END) != 0) {
    return 0;
  }
  const long size = std::ftell(file);
  std::rewind(file);
  return size < 0 || size > std::numeric_limits<std::int32_t>::max()
             ? 0
             : static_cast<std::size_t>(size);
}

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Takes what scanf would take off the front of a text, in a fraction of the time.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : next_(text.data()), end_(next_ + text.size()) {}

  // White space before the number does not count, a sign is part of its width. False, and `value`
  // is left alone, when no number follows.
  bool Number(std::uint16_t& value, std::ptrdiff_t width) {
    while (next_ != end_ && IsSpace(*next_)) {
      ++next_;
    }
    const char* const end = next_ + std::min(width, end_ - next_);
    const bool isNegative = next_ != end && *next_ == '-';
    if (isNegative || (next_ != end && *next_ == '+')) {
      ++next_;
    }
    if (next_ == end || !IsDigit(*next_)) {
      return false;
    }
    int number = 0;
    for (; next_ != end && IsDigit(*next_); ++next_) {
      number = number * 10 + (*next_ - '0');
    }
    value = static_cast<std::uint16_t>(isNegative ? -number : number);
    return true;
  }
  bool Mark(char mark) {
    if (next_ == end_ || *next_ != mark) {
      return false;
    }
    ++next_;
    return true;
  }

 private:
  const char* next_;
  const char* const end_;
};

// From the first part that does not parse on, all parts stay 0. Between day and hour there may be
// white space, which the number skips.
platform::LocalTime ParseTime(std::string_view text) {
  platform::LocalTime time;
  Scanner scanner(text);
  static_cast<void>(
      scanner.Number(time.year, 4) && scanner.Mark('-') && scanner.Number(time.month, 2) &&
      scanner.Mark('-') && scanner.Number(time.day, 2) && scanner.Number(time.hour, 2) &&
      scanner.Mark(':') && scanner.Number(time.minute, 2) && scanner.Mark(':') &&
      scanner.Number(time.second, 2) && scanner.Mark('.') && scanner.Number(time.millisecond, 3));
  return time;
}

}  // namespace

std::optional<CacheLine> ParseCacheLine(std::string_view line) {
  const std::vector<std::string_view> fields = SplitText(line, "|");
  if (fields.size() < 5) {
    return std::nullopt;
  }
  return CacheLine{std::string(fields[1]),
                   {std::string(fields[2]), std::string(fields[3]), ParseTime(fields[4])}};
}

std::string FormatCache(const DeviceTable::Records& records) {
  std::string content;
  content.reserve(records.size() * kUsualLineLength);
  unsigned number = 0;
  for (const auto& [id, record] : records) {
    AppendNumber(content, ++number);
    for (const std::string* text : {&id, &record.mac, &record.name}) {
      // A zero byte would end the file for who loads it.
      content += '|';
      content.append(*text, 0, text->find('\0'));
    }
    content += '|';
    AppendStamp(content, record.seen);
    content += '\n';
  }
  return content;
}

std::string ReadCacheFile(platform::System& system, const std::string& path) {
  // For update: a cache that could not be written later is not read either.
  const auto file = OpenCacheFile(system, path, platform::FileUse::kUpdate);
  if (file == nullptr) {
    return {};
  }
  std::string content(SizeOf(file.get()), '\0');
  content.resize(std::fread(content.data(), 1, content.size(), file.get()));
  if (const auto zero = content.find('\0'); zero != std::string::npos) {
    content.resize(zero);
  }
  return content;
}

void WriteCacheFile(platform::System& system, const std::string& path, const std::string& content) {
  const auto file = OpenCacheFile(system, path, platform::FileUse::kReplace);
  if (file != nullptr) {
    // A write that fails is made good by the next change, which writes the whole table again.
    static_cast<void>(std::fwrite(content.data(), 1, content.size(), file.get()));
  }
}

}  // namespace lanvoss
