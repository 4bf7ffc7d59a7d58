// What a log line tells, in the words of the picture.
#pragma once

#include <string>

#include "log_line.h"

namespace lanvoss::program {

// Who is at work.
enum class Part { kHost, kWatcher, kConnection, kCheck, kLink };

struct Wording {
  Step step;
  Part part;
  bool trouble;
  const char* words;  // with the line's fields in braces
  const char* mark;   // the same, as short as can be; null: the picture shows it as part of a span
};

const Wording& WordingOf(Step step);

// The words for a line that is understood.
std::string WordsOf(const LogLine& line);

// `words` with the fields of `line` in their places.
std::string FillIn(const char* words, const LogLine& line);

// Whether the line tells of something that went wrong.
bool IsTrouble(const LogLine& line);

// Whether the line is written by an event handler, and so on a thread of the platform's.
bool IsByPlatform(Step step);

}  // namespace lanvoss::program
