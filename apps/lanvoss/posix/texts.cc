#include "texts.h"

#include <algorithm>

namespace lanvoss::program {
namespace {

constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kDelete = 0x7F;
// The second set of control characters, which terminals heed as well: 0xC2 and one of these.
constexpr unsigned char kSecondSetLead = 0xC2;
constexpr unsigned char kSecondSetFirst = 0x80;
constexpr unsigned char kSecondSetLast = 0x9F;

unsigned char ByteAt(std::string_view text, std::size_t position) {
  return static_cast<unsigned char>(text[position]);
}

}  // namespace

std::size_t ControlLength(std::string_view text) {
  if (ByteAt(text, 0) < kFirstPrintable || ByteAt(text, 0) == kDelete) {
    return 1;
  }
  const bool isOfSecondSet = text.size() > 1 && ByteAt(text, 0) == kSecondSetLead &&
                             ByteAt(text, 1) >= kSecondSetFirst &&
                             ByteAt(text, 1) <= kSecondSetLast;
  return isOfSecondSet ? 2 : 0;
}

std::size_t CharactersIn(const std::string& text) {
  // A byte of the form 10xxxxxx goes on with a character.
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string ToUtf8(const std::string& text) { return text; }

}  // namespace lanvoss::program
