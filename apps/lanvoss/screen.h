// The terminal: lines that scroll by, and below them one that tells how things stand.
#pragma once

#include <atomic>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>

namespace lanvoss::program {

// A thread of its own is the only one that writes to the terminal, so that the lines and the
// standing one never mix. The lines come out of a pipe.
class Screen {
 public:
  // `standing` is asked on that thread several times a second; an empty text takes no line.
  Screen(int pipe, std::FILE* terminal, std::function<std::string()> standing);
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  // Shows what the pipe still holds and removes the standing line.
  ~Screen();

  // Returns when everything that has been written to the pipe is shown, and what stands is up to
  // date.
  void Settle();

  // Grows whenever lines have been shown.
  unsigned TimesShown() const { return timesShown_; }

 private:
  void Paint(const std::stop_token& over);
  void Show(const std::string& lines);
  void Stand(const std::string& standing);

  const int pipe_;
  std::FILE* const terminal_;
  const std::function<std::string()> standing_;
  std::string stands_;  // the standing line that is shown; the painter's own
  std::atomic<unsigned> timesShown_ = 0;
  std::atomic<unsigned> timesSettled_ = 0;
  std::jthread painter_;
};

}  // namespace lanvoss::program
