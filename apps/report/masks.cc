#include "report/masks.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <utility>

namespace lanvoss::report {
namespace {

constexpr char kDevice[] = "device-";
constexpr char kUser[] = "user-";
constexpr char kId[] = "id-";
constexpr char kOther[] = "address-";

// A shorter name is masked only where it is a word of its own.
constexpr std::size_t kLongName = 6;

constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
constexpr std::string_view kUserFolders[] = {"/home/", "/Users/", "\\Users\\"};

// The kinds of addresses.
constexpr std::string_view kIpv6 = "IPv6";
constexpr std::string_view kHardware = "hardware";
constexpr std::string_view kIpv4 = "IPv4";

bool IsWordByte(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  return std::isalnum(value) != 0 || value >= 0x80;
}

// Whether the text continues with `pattern`: 'd' is a digit, 'x' a hexadecimal one, '?' anything.
bool Matches(std::string_view text, std::string_view pattern) {
  if (text.size() < pattern.size()) {
    return false;
  }
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool matches = pattern[i] == 'd'   ? std::isdigit(byte) != 0
                         : pattern[i] == 'x' ? std::isxdigit(byte) != 0
                         : pattern[i] == '?' ? true
                                             : text[i] == pattern[i];
    if (!matches) {
      return false;
    }
  }
  return true;
}

std::string_view RunOf(std::string_view text, std::string_view bytes) {
  return text.substr(0, std::min(text.find_first_not_of(bytes), text.size()));
}

// The address of a network interface at the beginning of the text; empty: none.
std::string_view HardwareAddress(std::string_view text) {
  for (const std::string_view pattern : {"xx:xx:xx:xx:xx:xx", "xx-xx-xx-xx-xx-xx"}) {
    if (Matches(text, pattern) && RunOf(text.substr(pattern.size()), kHexDigits).empty()) {
      return text.substr(0, pattern.size());
    }
  }
  return {};
}

std::string_view Ipv6Address(std::string_view text) {
  constexpr std::ptrdiff_t kColons = 7;  // of an address that is written in full
  std::string_view run = RunOf(text, "0123456789abcdefABCDEF:.");
  while (run.ends_with('.') || (run.ends_with(':') && !run.ends_with("::"))) {
    run.remove_suffix(1);
  }
  const bool isAddress = run.find("::") != std::string_view::npos
                             ? run.find_first_of(kHexDigits) != std::string_view::npos
                             : std::ranges::count(run, ':') == kColons;
  return isAddress ? run : std::string_view();
}

std::string_view Ipv4Address(std::string_view text) {
  constexpr int kNumbers = 4;
  constexpr std::size_t kDigits = 3;
  std::size_t length = 0;
  for (int number = 0; number < kNumbers; ++number) {
    if (number > 0 && (length == text.size() || text[length++] != '.')) {
      return {};
    }
    const std::string_view digits = RunOf(text.substr(length), "0123456789");
    if (digits.empty() || digits.size() > kDigits) {
      return {};
    }
    length += digits.size();
  }
  return text.substr(0, length);
}

// A driver's version looks like an address.
bool IsVersion(std::string_view before) {
  return before.ends_with("driver ") || before.ends_with("version ");
}

std::string InSmallLetters(std::string_view text) {
  std::string small(text);
  std::ranges::transform(small, small.begin(), [](unsigned char byte) {
    return static_cast<char>(byte == '-' ? ':' : std::tolower(byte));
  });
  return small;
}

}  // namespace

void Masks::Add(const std::string& name, const char* kind) {
  if (!name.empty()) {
    MaskOf(name, kind);
  }
}

std::string Masks::MaskOf(const std::string& original, const char* kind) {
  const auto known = names_.find(original);
  if (known != names_.end()) {
    return known->second;
  }
  return names_[original] = kind + std::to_string(++counts_[kind]);
}

log::Notification Masks::Mask(const log::Notification& notification) {
  log::Notification masked = notification;
  masked.message = notification.kind == "info"    ? MaskLine(notification.message)
                   : notification.kind == "watch" ? MaskField("name", notification.message)
                                                  : Mask(notification.message);
  return masked;
}

// Only the fields of a known line are masked: a device may be called like a word of the log.
std::string Masks::MaskLine(std::string_view message) {
  const log::LogLine line = log::ParseLogLine(message);
  if (!log::IsKnown(line)) {
    return Mask(message);
  }
  std::string masked;
  std::string_view pattern = line.kind->pattern;
  std::string_view literal = log::detail::TakeLiteral(pattern);
  while (true) {
    masked += literal;
    message.remove_prefix(literal.size());
    if (pattern.empty()) {
      return masked;
    }
    const std::string_view field = pattern.substr(1, pattern.find('}') - 1);
    pattern.remove_prefix(field.size() + 2);
    literal = log::detail::TakeLiteral(pattern);
    const std::string_view before = message;
    log::LogLine taken;
    log::detail::TakeField(field, literal, message, taken);
    masked += MaskField(field, std::string(before.substr(0, before.size() - message.size())));
  }
}

std::string Masks::MaskField(std::string_view field, const std::string& value) {
  if (value.empty() || log::detail::IsNumber(field)) {
    return value;
  }
  if (field == "name") {
    return MaskOf(value, kDevice);
  }
  std::string masked = Mask(value);
  if (field != "text" && masked == value) {  // an address of a form that is not known
    return MaskOf(value, field == "id" ? kId : kOther);
  }
  return masked;
}

std::string Masks::Mask(std::string_view text) {
  std::string masked;
  std::size_t at = 0;
  while (at < text.size()) {
    if (const auto found = FindAt(text, at)) {
      masked += found->mask;
      at += found->length;
    } else {
      masked += text[at++];
    }
  }
  return masked;
}

std::optional<Masks::Found> Masks::FindAt(std::string_view text, std::size_t at) {
  if (auto name = FindName(text, at)) {
    return name;
  }
  const bool isInWord = at > 0 && IsWordByte(text[at - 1]) && IsWordByte(text[at]);
  if (isInWord) {
    return std::nullopt;
  }
  auto user = FindUser(text, at);
  return user ? user : FindAddress(text, at);
}

// The longest one.
std::optional<Masks::Found> Masks::FindName(std::string_view text, std::size_t at) const {
  std::optional<Found> longest;
  const auto first = names_.lower_bound(text.substr(at, 1));
  for (auto known = first; known != names_.end() && known->first.front() == text[at]; ++known) {
    const auto& [name, mask] = *known;
    const std::size_t end = at + name.size();
    const bool isThere = text.substr(at, name.size()) == name;
    if (!isThere || (longest && longest->length >= name.size())) {
      continue;
    }
    const bool isWord = (at == 0 || !IsWordByte(text[at - 1]) || !IsWordByte(name.front())) &&
                        (end == text.size() || !IsWordByte(text[end]) || !IsWordByte(name.back()));
    if (isWord || name.size() >= kLongName) {
      longest = {name.size(), mask};
    }
  }
  return longest;
}

std::optional<Masks::Found> Masks::FindUser(std::string_view text, std::size_t at) {
  const std::string_view before = text.substr(0, at);
  for (const std::string_view folder : kUserFolders) {
    const std::size_t end = std::min(text.find_first_of("/\\\"' \n:;,", at), text.size());
    if (before.ends_with(folder) && end > at) {
      const std::string_view user = text.substr(at, end - at);
      return Found{user.size(), MaskOf(std::string(user), kUser)};
    }
  }
  return std::nullopt;
}

std::optional<Masks::Found> Masks::FindAddress(std::string_view text, std::size_t at) {
  const std::string_view rest = text.substr(at);
  std::string_view kind = kIpv6;
  std::string_view address = Ipv6Address(rest);
  if (address.empty()) {
    kind = kHardware;
    address = HardwareAddress(rest);
  }
  if (address.empty() && !IsVersion(text.substr(0, at)) && (at == 0 || text[at - 1] != '.')) {
    kind = kIpv4;
    address = Ipv4Address(rest);
  }
  if (address.empty()) {
    return std::nullopt;
  }
  std::string& mask = addresses_[InSmallLetters(address)];
  if (mask.empty()) {
    mask = NextAddress(kind);
  }
  std::string written = mask;
  if (kind == kHardware) {
    std::ranges::replace(written, ':', address[2]);  // which separates its numbers here
  }
  return Found{address.size(), std::move(written)};
}

std::string Masks::NextAddress(std::string_view kind) {
  const auto number = static_cast<unsigned>(++counts_[std::string(kind)]);
  std::array<char, 40> mask{};
  if (kind == kIpv6) {
    std::snprintf(mask.data(), mask.size(), "2001:db8::%x", number);
  } else if (kind == kHardware) {
    std::snprintf(mask.data(), mask.size(), "02:00:00:%02x:%02x:%02x", number >> 16U & 0xFFU,
                  number >> 8U & 0xFFU, number & 0xFFU);
  } else {
    // In 198.18.0.0/15, which no network uses but those for measurements.
    std::snprintf(mask.data(), mask.size(), "198.%u.%u.%u", 18U + (number >> 16U & 1U),
                  number >> 8U & 0xFFU, number & 0xFFU);
  }
  return mask.data();
}

}  // namespace lanvoss::report
