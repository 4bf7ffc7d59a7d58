#include "backends/wpa/message.h"

#include <algorithm>

namespace lanvoss::wpa {
namespace {

constexpr char kBlank = ' ';

bool IsSecret(std::string_view key) { return key == "passphrase" || key == "psk"; }

// Without everything from the first quote to the last. Names, network names and passphrases are in
// quotes, and other devices choose them: they may hold quotes, and what looks like a field.
std::string WithoutQuoted(std::string_view text) {
  constexpr char kQuotes[] = "'\"";
  const std::size_t first = text.find_first_of(kQuotes);
  std::string rest(text.substr(0, first));
  if (first != std::string_view::npos) {
    rest += kBlank;
    rest += text.substr(text.find_last_of(kQuotes) + 1);
  }
  return rest;
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
  for (const std::string& word : Lines(WithoutQuoted(text), kBlank)) {
    const std::size_t equals = word.find('=');
    if (word.empty()) {
      continue;
    }
    if (message.name.empty()) {
      message.name = word;
    } else if (equals == std::string::npos) {
      message.words.push_back(word);
    } else if (const auto key = word.substr(0, equals); !IsSecret(key)) {
      message.fields.emplace(key, word.substr(equals + 1));
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
