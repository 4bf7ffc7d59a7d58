#include "registry/cache_file.h"

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

platform::LocalTime ParseTime(const std::string& text) {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
  // How many parts were there does not matter: the others stay 0.
  static_cast<void>(std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d.%3d", &year, &month, &day,
                                &hour, &minute, &second, &millisecond));
  const auto part = [](int value) { return static_cast<std::uint16_t>(value); };
  return {part(year),   part(month),  part(day),        part(hour),
          part(minute), part(second), part(millisecond)};
}

}  // namespace

std::optional<CacheLine> ParseCacheLine(const std::string& line) {
  const std::vector<std::string> fields = SplitText(line, "|");
  if (fields.size() < 5) {
    return std::nullopt;
  }
  return CacheLine{fields[1], {fields[2], fields[3], ParseTime(fields[4])}};
}

std::string FormatCache(const std::map<std::string, DeviceRecord>& records) {
  std::string content;
  int number = 0;
  for (const auto& [id, record] : records) {
    const platform::LocalTime& seen = record.seen;
    content += Format("%d|%s|%s|%s|%04d-%02d-%02d %02d:%02d:%02d.%03d\n", ++number, id.c_str(),
                      record.mac.c_str(), record.name.c_str(), seen.year, seen.month, seen.day,
                      seen.hour, seen.minute, seen.second, seen.millisecond);
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
