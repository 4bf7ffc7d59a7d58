#include "texts.h"

#include <windows.h>

namespace lanvoss::program {
namespace {

constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kDelete = 0x7F;

}  // namespace

// No other byte is a control character in every code page that Windows has.
std::size_t ControlLength(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text.front());
  return byte < kFirstPrintable || byte == kDelete ? 1 : 0;
}

std::size_t CharactersIn(const std::string& text) {
  return static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0));
}

std::string ToUtf8(const std::string& text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length)));
  const int wideLength = static_cast<int>(wide.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideLength, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideLength, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

}  // namespace lanvoss::program
