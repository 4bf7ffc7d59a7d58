/// @file
/// What the library's log lines say. The table of `log_table.h` has their wording.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "lanvoss/client/log_table.h"

namespace lanvoss::log {
namespace detail {

inline bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// Moves a 32-bit number out of the beginning of `rest`.
inline std::optional<std::int32_t> TakeNumber(std::string_view& rest) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (error != std::errc()) {
    return std::nullopt;
  }
  rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  return number;
}

// The text up to the last `literal`. Devices choose their names, so the text may contain `literal`
// too. To the end when `literal` is empty.
inline std::optional<std::string> TakeText(std::string_view& rest, std::string_view literal) {
  const auto end = rest.rfind(literal);
  if (end == std::string_view::npos) {
    return std::nullopt;
  }
  std::string text(rest.substr(0, end));
  rest.remove_prefix(end);
  return text;
}

inline bool IsNumber(std::string_view field) {
  return field.empty() || field == "number" || field == "ms" || field == "givenUp";
}

// Moves one field from the front of `rest` into `line`. False when it is not there.
inline bool TakeField(std::string_view field, std::string_view literal, std::string_view& rest,
                      LogLine& line) {
  if (IsNumber(field)) {
    const auto number = TakeNumber(rest);
    if (!field.empty()) {
      (field == "ms" ? line.ms : field == "givenUp" ? line.givenUp : line.number) = number;
    }
    return number.has_value();
  }
  auto text = TakeText(rest, literal);
  if (!text) {
    return false;
  }
  (field == "name"    ? line.name
   : field == "id"    ? line.id
   : field == "local" ? line.local
   : field == "text"  ? line.text
                      : line.remote) = std::move(*text);
  return true;
}

// Moves the text up to the next field, or to the end, out of the pattern.
inline std::string_view TakeLiteral(std::string_view& pattern) {
  const std::string_view literal = pattern.substr(0, pattern.find('{'));
  pattern.remove_prefix(literal.size());
  return literal;
}

inline std::optional<LogLine> Match(const LogLineKind& kind, std::string_view rest) {
  LogLine line;
  line.kind = &kind;
  line.event = kind.event;
  std::string_view ahead = kind.pattern;
  std::string_view literal = TakeLiteral(ahead);
  while (StartsWith(rest, literal)) {
    rest.remove_prefix(literal.size());
    if (ahead.empty()) {
      return rest.empty() ? std::optional(std::move(line)) : std::nullopt;
    }
    const auto end = ahead.find('}');
    const std::string_view field = ahead.substr(1, end - 1);
    ahead.remove_prefix(end + 1);
    literal = TakeLiteral(ahead);
    if (!TakeField(field, literal, rest, line)) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

inline std::string FieldOf(std::string_view name, const LogLine& line) {
  const auto text = [](const std::optional<std::int32_t>& number) {
    return number ? std::to_string(*number) : "?";
  };
  return name == "name"     ? line.name
         : name == "id"     ? line.id
         : name == "text"   ? line.text
         : name == "local"  ? line.local
         : name == "remote" ? line.remote
         : name == "ms"     ? text(line.ms)
                            : text(line.number);
}

// `words` with the fields of `line` in their places.
inline std::string FillIn(std::string_view words, const LogLine& line) {
  std::string filled;
  for (auto open = words.find('{'); open != std::string_view::npos; open = words.find('{')) {
    const auto close = words.find('}', open);
    filled += words.substr(0, open);
    filled += FieldOf(words.substr(open + 1, close - open - 1), line);
    words.remove_prefix(close + 1);
  }
  return filled += words;
}

}  // namespace detail

/// A line that is not known, or a notification that is no log line: it has its text alone.
inline LogLine UnknownLine(std::string_view text) {
  LogLine line;
  line.kind = &kUnknownLine;
  line.text = text;
  return line;
}

/// Takes a log line, which is the message of a notification of the kind "info", apart.
inline LogLine ParseLogLine(std::string_view message) {
  for (const LogLineKind& kind : kLogLines) {
    if (auto line = detail::Match(kind, message)) {
      return std::move(*line);
    }
  }
  return UnknownLine(message);
}

inline bool IsKnown(const LogLine& line) { return line.kind != &kUnknownLine; }

/// What the line says, for readers who do not know the log.
inline std::string WordsOf(const LogLine& line) { return detail::FillIn(line.kind->words, line); }

/// A short mark for a picture; empty if the line has none.
inline std::string MarkOf(const LogLine& line) {
  return detail::FillIn(line.kind->traits.mark, line);
}

/// What is being done from this line on, in words; empty if the line does not say it.
inline std::string PhaseOf(const LogLine& line) {
  return detail::FillIn(line.kind->traits.phase, line);
}

/// Whether the line says that something went wrong.
inline bool IsTrouble(const LogLine& line) {
  return line.kind->traits.isTrouble != nullptr && line.kind->traits.isTrouble(line);
}

}  // namespace lanvoss::log
