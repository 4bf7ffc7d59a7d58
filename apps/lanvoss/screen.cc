#include "screen.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

namespace lanvoss::program {
namespace {

constexpr std::chrono::milliseconds kRepaintTime(200);

// In the pipe, after all that must be shown before Settle returns.
constexpr char kMark = '\0';

// Moves the complete lines out of `text`.
std::string TakeLines(std::string& text) {
  const std::size_t end = text.rfind('\n') + 1;  // 0 when there is none
  std::string lines = text.substr(0, end);
  text.erase(0, end);
  return lines;
}

// Goes to the beginning of the current line, and empties it.
std::string Emptied(std::FILE* terminal) {
  return "\r" + std::string(static_cast<std::size_t>(TerminalWidth(terminal) - 1), ' ') + "\r";
}

// Without the last column, or the cursor would move to the next line.
std::string CutToWidth(std::string line, std::FILE* terminal) {
  const auto width = static_cast<std::size_t>(TerminalWidth(terminal) - 1);
  line.resize(std::min(line.size(), width));
  return line;
}

void Write(std::FILE* terminal, const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), terminal);
  std::fflush(terminal);
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const std::size_t control = text.front() == '\n' ? 0 : ControlLength(text);
    printable += control > 0 ? '?' : text.front();
    text.remove_prefix(std::max<std::size_t>(control, 1));
  }
  return printable;
}

Screen::Screen(const Pipe& pipe, std::FILE* terminal, Calls calls)
    : pipe_(pipe.in),
      terminal_(terminal),
      calls_(std::move(calls)),
      lines_(pipe.out, change_),
      painter_([this] { Paint(); }) {}

Screen::~Screen() {
  Settle();
  isOver_ = true;
  change_->Wake();
  painter_.join();
}

void Screen::Paint() {
  std::string unshown;
  while (!isOver_) {
    const Input::State state = lines_.Take(unshown);
    const std::size_t marks = std::erase(unshown, kMark);
    Show(TakeLines(unshown));
    SetStatusLine(calls_.statusLine());
    if (marks > 0) {
      marksShown_ += static_cast<unsigned>(marks);
      markShown_.Wake();
    }
    if (state == Input::State::kMore) {
      continue;
    }
    if (shownStatusLine_.empty()) {
      change_->Wait();
    } else {
      change_->WaitUntil(WakeUp::Clock::now() + kRepaintTime);
    }
  }
  SetStatusLine("");
}

void Screen::Settle() {
  const unsigned marks = marksShown_;
  std::fputc(kMark, pipe_);
  std::fflush(pipe_);
  while (marksShown_ == marks) {
    markShown_.Wait();
  }
}

void Screen::Show(const std::string& lines) {
  if (!lines.empty()) {
    shownStatusLine_ = CutToWidth(Printable(calls_.statusLine()), terminal_);
    Write(terminal_, Emptied(terminal_) + Printable(lines) + shownStatusLine_);
    ++timesShown_;
    calls_.onShown();
  }
}

void Screen::SetStatusLine(const std::string& statusLine) {
  std::string line = CutToWidth(Printable(statusLine), terminal_);
  if (line != shownStatusLine_) {
    shownStatusLine_ = std::move(line);
    Write(terminal_, Emptied(terminal_) + shownStatusLine_);
  }
}

}  // namespace lanvoss::program
