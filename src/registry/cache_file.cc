#include "registry/cache_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

#include "registry/split_text.h"
#include "watcher/text.h"

namespace lanvoss {
namespace {

// A guess that spares the content from growing; a longer line only costs time.
constexpr std::size_t kUsualLineLength = 128;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Whether the path means the file that it says. The file name alone comes from a current directory
// too long to be told, and would become a file in the root directory; a zero byte would cut it
// short.
bool IsPlace(const std::string& path) {
  return path != kCacheFileName && path.find('\0') == std::string::npos;
}

File OpenCacheFile(const std::string& path, const char* mode) {
  return File(IsPlace(path) ? std::fopen(path.c_str(), mode) : nullptr);
}

// 0 for a size that 32 bits cannot hold, or that cannot be told.
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

// Takes a number off the front of the text, as scanf does: white space before it does not count, a
// sign is part of its width.
std::optional<int> TakeNumber(std::string_view& text, std::size_t width) {
  const char* const begin = std::find_if_not(text.data(), text.data() + text.size(), IsSpace);
  const char* const end =
      begin + std::min(width, text.size() - static_cast<std::size_t>(begin - text.data()));
  const bool isSigned = begin != end && (*begin == '-' || *begin == '+');
  const char* next = isSigned ? begin + 1 : begin;
  if (next == end || !IsDigit(*next)) {
    return std::nullopt;
  }
  int number = 0;
  for (; next != end && IsDigit(*next); ++next) {
    number = number * 10 + (*next - '0');
  }
  text.remove_prefix(static_cast<std::size_t>(next - text.data()));
  return *begin == '-' ? -number : number;
}

// What scanf would make of the stamp, an order of magnitude faster. Parts from the first one on
// that does not parse stay 0.
platform::LocalTime ParseTime(std::string_view text) {
  using platform::LocalTime;
  struct Part {
    std::uint16_t LocalTime::*value;
    std::size_t width;
    char after;
  };
  static constexpr Part kParts[] = {{&LocalTime::year, 4, '-'},       {&LocalTime::month, 2, '-'},
                                    {&LocalTime::day, 2, ' '},        {&LocalTime::hour, 2, ':'},
                                    {&LocalTime::minute, 2, ':'},     {&LocalTime::second, 2, '.'},
                                    {&LocalTime::millisecond, 3, ' '}};
  LocalTime time;
  for (const Part& part : kParts) {
    const auto number = TakeNumber(text, part.width);
    if (!number) {
      break;
    }
    time.*part.value = static_cast<std::uint16_t>(*number);
    if (part.after == ' ') {
      continue;  // any white space, none included; the next number skips it
    }
    if (!text.starts_with(part.after)) {
      break;
    }
    text.remove_prefix(1);
  }
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

std::string FormatCache(const std::map<std::string, DeviceRecord>& records) {
  std::string content;
  content.reserve(records.size() * kUsualLineLength);
  unsigned number = 0;
  for (const auto& [id, record] : records) {
    AppendNumber(content, ++number);
    for (const std::string* text : {&id, &record.mac, &record.name}) {
      // A zero byte would end the file for who loads it.
      content.append(1, '|').append(*text, 0, text->find('\0'));
    }
    content += '|';
    AppendStamp(content, record.seen);
    content += '\n';
  }
  return content;
}

std::string ReadCacheFile(const std::string& path) {
  // For update: a cache that could not be written later is not read either.
  const File file = OpenCacheFile(path, "rb+");
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

void WriteCacheFile(const std::string& path, const std::string& content) {
  if (const File file = OpenCacheFile(path, "wb+"); file != nullptr) {
    // A write that fails is made good by the next change, which writes the whole table again.
    static_cast<void>(std::fwrite(content.data(), 1, content.size(), file.get()));
  }
}

}  // namespace lanvoss
