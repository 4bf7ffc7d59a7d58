#include "input.h"

#include <array>
#include <cstddef>
#include <poll.h>
#include <unistd.h>

#include "notice.h"

namespace lanvoss::program {
namespace {

constexpr std::size_t kReadLength = 4096;

}  // namespace

Input ReadInput(int file, std::string& text) {
  pollfd input{.fd = file, .events = POLLIN, .revents = 0};
  if (::poll(&input, 1, kNoticeMs) <= 0) {
    return Input::kNoneYet;
  }
  std::array<char, kReadLength> buffer{};
  const ssize_t length = ::read(file, buffer.data(), buffer.size());
  if (length <= 0) {
    return Input::kEnd;
  }
  text.append(buffer.data(), static_cast<std::size_t>(length));
  return Input::kMore;
}

}  // namespace lanvoss::program
