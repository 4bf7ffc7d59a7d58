#include "base/text.h"

#include <cstddef>

namespace lanvoss {
namespace {

constexpr std::size_t kMostDigits = 10;  // of a number of 32 bits
// Seven numbers of at most 16 bits, and the characters between them.
constexpr std::size_t kMostStampLength = 7 * 5 + 6;

// Writes the number before `end`, and returns where it begins.
char* PutBefore(char* end, unsigned number, int width) {
  char* begin = end;
  do {
    *--begin = static_cast<char>('0' + number % 10);
    number /= 10;
  } while (number > 0 || end - begin < width);
  return begin;
}

}  // namespace

std::string ToAnsi(platform::System& system, std::u16string_view wide) {
  std::string narrow = system.WideToAnsi(wide);
  if (const auto zero = narrow.find('\0'); zero != std::string::npos) {
    narrow.resize(zero);
  }
  return narrow;
}

// What a log line and a line of the cache file cost most. printf would take several times as long.
void AppendNumber(std::string& text, unsigned number, int width) {
  char digits[kMostDigits];
  char* const end = digits + sizeof digits;
  text.append(PutBefore(end, number, width), end);
}

void AppendStamp(std::string& text, const platform::LocalTime& time) {
  char stamp[kMostStampLength];
  char* const end = stamp + sizeof stamp;
  char* begin = PutBefore(end, time.millisecond, 3);
  const auto put = [&begin](char separator, unsigned number, int width) {
    *--begin = separator;
    begin = PutBefore(begin, number, width);
  };
  put('.', time.second, 2);
  put(':', time.minute, 2);
  put(':', time.hour, 2);
  put(' ', time.day, 2);
  put('-', time.month, 2);
  put('-', time.year, 4);
  text.append(begin, end);
}

}  // namespace lanvoss
