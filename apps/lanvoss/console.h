// What the program says, and where the library's log goes.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace lanvoss::program {

struct ConsoleOptions {
  // The library writes its log to standard output by itself.
  enum class Log { kShown, kDropped, kKept };
  Log log = Log::kShown;
  std::string logFile = {};  // of kKept; it is appended to
  // What stands in the last line of a terminal; asked on a thread of the console's.
  std::function<std::string()> standing = [] { return std::string(); };
};

// A log file that cannot be written to.
class ConsoleError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws ConsoleError.
void OpenConsole(const ConsoleOptions& options);

// Writes whole lines to standard output.
void Print(const std::string& lines);

// Writes one line to standard error.
void Complain(const std::string& text);

// Shows on a terminal what has been written so far; from now on the library's log is not shown
// there.
void CloseConsole();

// Returns when a terminal shows all of that, and nothing stands there that is over.
void SettleConsole();

// Grows whenever the terminal has scrolled; 0 for ever where there is none.
unsigned TimesShown();

}  // namespace lanvoss::program
