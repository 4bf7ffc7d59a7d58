// What the program says, and where the library's log goes.
#pragma once

#include <atomic>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "screen.h"

namespace lanvoss::program {

// Where the log goes. The library itself writes it to standard output.
struct LogTarget {
  enum class Kind { kShown, kDropped, kFile };
  Kind kind = Kind::kShown;
  std::string file = {};  // of kFile; it is appended to
};

// A log file that cannot be written to.
class ConsoleError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Any thread may write to it. One thread opens and closes it.
class Console {
 public:
  // The calls are made only if standard error is a terminal. Throws ConsoleError.
  void Open(const LogTarget& log, Screen::Calls calls);

  // Writes whole lines to standard output.
  void Print(const std::string& lines);

  // Writes one line to standard error.
  void Complain(const std::string& text);

  // Shows on a terminal what has been written so far. After that the library's log is not shown
  // there.
  void Close();

  // Returns when a terminal shows all that has been written and an up-to-date status.
  void Settle();

  // Brings the status up to date.
  void Refresh();

  // Whether all output goes to a terminal that shows a status of several lines.
  bool ShowsTables() const;

  // Grows whenever the terminal has scrolled; always 0 without a terminal.
  unsigned TimesShown() const;

 private:
  void OpenScreen(Screen::Calls calls);

  std::atomic<std::FILE*> results_ = stdout;
  std::atomic<std::FILE*> complaints_ = stderr;
  std::unique_ptr<Screen> screen_ = {};  // only if standard error is a terminal
};

}  // namespace lanvoss::program
