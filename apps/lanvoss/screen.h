// The terminal: lines that scroll by, and below them the status line.
#pragma once

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "input.h"
#include "system.h"
#include "wake_up.h"

namespace lanvoss::program {

// The text, safe for a terminal: control characters become '?'. Line ends stay.
std::string Printable(std::string_view text);

// Only a thread of its own writes to the terminal, so that the lines and the status line never mix.
// It reads the lines from a pipe.
class Screen {
 public:
  struct Calls {
    std::function<std::string()> statusLine;  // an empty text takes no line
    std::function<void()> onShown;            // after lines have been shown
  };

  // The calls are made on the screen's thread.
  Screen(const Pipe& pipe, std::FILE* terminal, Calls calls);
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  // Shows what the pipe still holds and removes the status line.
  ~Screen();

  // Shows the current status line. While there is one, it is shown again several times a second.
  void Refresh() { change_->Wake(); }

  // Returns when everything that has been written to the pipe is shown, and the status line is up
  // to date. For one thread.
  void Settle();

  // Grows whenever lines have been shown.
  unsigned TimesShown() const { return timesShown_; }

 private:
  void Paint();
  void Show(const std::string& lines);
  void SetStatusLine(const std::string& statusLine);

  std::FILE* const pipe_;
  std::FILE* const terminal_;
  const Calls calls_;
  const std::shared_ptr<WakeUp> change_ = std::make_shared<WakeUp>();
  Input lines_;
  std::string shownStatusLine_;  // used by the painter alone
  std::atomic<unsigned> timesShown_ = 0;
  std::atomic<unsigned> marksShown_ = 0;
  WakeUp markShown_;
  std::atomic<bool> isOver_ = false;
  std::thread painter_;
};

}  // namespace lanvoss::program
