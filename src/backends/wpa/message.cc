#include "backends/wpa/message.h"

#include <algorithm>

namespace lanvoss::wpa {
namespace {

constexpr char kBlank = ' ';

bool IsSecret(std::string_view key) { return key == "passphrase" || key == "psk"; }

// Moves the next word out of `text`. A value in quotes may contain blanks and quotes: it ends with
// a quote before a blank or before the end.
std::string_view TakeWord(std::string_view& text) {
  std::size_t end = text.find(kBlank);
  const std::size_t quote = text.find_first_of("'\"");
  if (quote != std::string_view::npos && quote > 0 && quote < end && text[quote - 1] == '=') {
    const std::string closing{text[quote], kBlank};
    end = text.find(closing, quote + 1);
    end = end == std::string_view::npos ? end : end + 1;
  }
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(word.size());
  text.remove_prefix(std::min(text.find_first_not_of(kBlank), text.size()));
  return word;
}

std::string_view Unquoted(std::string_view value) {
  const bool quoted = value.size() >= 2 && (value.front() == '\'' || value.front() == '"') &&
                      value.back() == value.front();
  return quoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

std::string Message::Word(std::size_t index) const {
  return index < words.size() ? words[index] : std::string();
}

std::string Message::Field(const std::string& key) const {
  const auto found = fields.find(key);
  return found == fields.end() ? std::string() : found->second;
}

Message ParseMessage(std::string_view text) {
  if (text.starts_with('<')) {
    text.remove_prefix(std::min(text.find('>') + 1, text.size()));  // the level
  }
  Message message;
  message.name = TakeWord(text);
  while (!text.empty()) {
    const std::string_view word = TakeWord(text);
    const std::size_t equals = word.find('=');
    if (equals == std::string_view::npos) {
      message.words.emplace_back(word);
    } else if (const auto key = word.substr(0, equals); !IsSecret(key)) {
      message.fields.emplace(key, Unquoted(word.substr(equals + 1)));
    }
  }
  return message;
}

std::vector<std::string> Lines(std::string_view text, char separator) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::string LineOf(std::string_view reply, std::string_view key) {
  for (const std::string& line : Lines(reply)) {
    if (line.size() > key.size() && line.starts_with(key) && line[key.size()] == '=') {
      return line.substr(key.size() + 1);
    }
  }
  return {};
}

}  // namespace lanvoss::wpa
