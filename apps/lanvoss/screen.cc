#include "screen.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

#include "columns.h"

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

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : "\n") + line;
  }
  return text;
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
      canMoveCursor_(CanMoveCursor(terminal)),
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
    SetStatus(calls_.status());
    if (marks > 0) {
      marksShown_ += static_cast<unsigned>(marks);
      markShown_.Wake();
    }
    if (state == Input::State::kMore) {
      continue;
    }
    if (shownStatus_.empty()) {
      change_->Wait();
    } else {
      change_->WaitUntil(WakeUp::Clock::now() + kRepaintTime);
    }
  }
  SetStatus("");
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
    const std::string emptied = Emptied();
    shownStatus_ = Fitted(calls_.status());
    Write(terminal_, emptied + Printable(lines) + Joined(shownStatus_));
    ++timesShown_;
    calls_.onShown();
  }
}

void Screen::SetStatus(const std::string& status) {
  std::vector<std::string> lines = Fitted(status);
  if (lines != shownStatus_) {
    const std::string emptied = Emptied();
    shownStatus_ = std::move(lines);
    Write(terminal_, emptied + Joined(shownStatus_));
  }
}

// The beginning of the status, as far as there is room: without the last column, or the cursor
// would move to the next line, and with a line above it.
std::vector<std::string> Screen::Fitted(const std::string& status) const {
  const TerminalSize size = SizeOf(terminal_);
  const std::size_t most = canMoveCursor_ ? std::max<std::size_t>(size.rows, 2) - 1 : 1;
  std::vector<std::string> lines;
  std::string rest = Printable(status);
  while (!rest.empty() && lines.size() < most) {
    const std::string line = rest.substr(0, rest.find('\n'));
    rest.erase(0, line.size() + 1);
    lines.push_back(CutToColumns(line, size.columns - 1));
  }
  return lines;
}

// Goes to the beginning of the shown status, and empties its lines. A terminal that has become
// narrower has broken them into several.
std::string Screen::Emptied() const {
  const std::size_t columns = SizeOf(terminal_).columns;
  std::size_t rows = 0;
  for (const std::string& line : shownStatus_) {
    rows += (std::max<std::size_t>(ColumnsIn(line), 1) + columns - 1) / columns;
  }
  if (rows <= 1 || !canMoveCursor_) {
    return "\r" + std::string(columns - 1, ' ') + "\r";
  }
  return "\r\x1B[" + std::to_string(rows - 1) + "A\x1B[J";
}

}  // namespace lanvoss::program
