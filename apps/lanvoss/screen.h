// The terminal: lines that scroll by, and below them the status.
#pragma once

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "input.h"
#include "system.h"
#include "wake_up.h"

namespace lanvoss::program {

// The text, safe for a terminal: control characters become '?'. Line ends stay.
std::string Printable(std::string_view text);

// Only a thread of its own writes to the terminal, so that the lines and the status never mix.
// It reads the lines from a pipe.
class Screen {
 public:
  struct Calls {
    std::function<std::string()> status;  // one line or several; an empty text takes none
    std::function<void()> onShown;        // after lines have been shown
  };

  // The calls are made on the screen's thread.
  Screen(const Pipe& pipe, std::FILE* terminal, Calls calls);
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  // Shows what the pipe still holds and removes the status.
  ~Screen();

  // Whether a status of several lines is shown, not only its first one.
  bool ShowsSeveralLines() const { return canMoveCursor_; }

  // Shows the current status. While there is one, it is shown again several times a second.
  void Refresh() { change_->Wake(); }

  // Returns when everything that has been written to the pipe is shown, and the status is up to
  // date. For one thread.
  void Settle();

  // Grows whenever lines have been shown.
  unsigned TimesShown() const { return timesShown_; }

 private:
  void Paint();
  void Show(const std::string& lines);
  void SetStatus(const std::string& status);
  std::vector<std::string> Fitted(const std::string& status) const;
  std::string Emptied() const;

  std::FILE* const pipe_;
  std::FILE* const terminal_;
  const bool canMoveCursor_;
  const Calls calls_;
  const std::shared_ptr<WakeUp> change_ = std::make_shared<WakeUp>();
  Input lines_;
  std::vector<std::string> shownStatus_;  // its lines; used by the painter alone
  std::atomic<unsigned> timesShown_ = 0;
  std::atomic<unsigned> marksShown_ = 0;
  WakeUp markShown_;
  std::atomic<bool> isOver_ = false;
  std::thread painter_;
};

}  // namespace lanvoss::program
