#include "screen.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

#include "input.h"
#include "streams.h"
#include "texts.h"

namespace lanvoss::program {
namespace {

constexpr std::chrono::milliseconds kRepaintTime(200);

// Takes the complete lines off `text`.
std::string TakeLines(std::string& text) {
  const std::size_t end = text.rfind('\n') + 1;  // 0 when there is none
  std::string lines = text.substr(0, end);
  text.erase(0, end);
  return lines;
}

// Goes to the beginning of the line that the cursor stands in, and empties it.
std::string Emptied(std::FILE* terminal) {
  return "\r" + std::string(static_cast<std::size_t>(TerminalWidth(terminal) - 1), ' ') + "\r";
}

// Without the last column, or the cursor would go on to the next line.
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

Screen::Screen(int pipe, std::FILE* terminal, std::function<std::string()> standing)
    : pipe_(pipe),
      terminal_(terminal),
      standing_(std::move(standing)),
      painter_([this](std::stop_token over) { Paint(over); }) {}

Screen::~Screen() = default;  // the thread ends first: it is the last member

void Screen::Paint(const std::stop_token& over) {
  using std::chrono::steady_clock;
  std::string unshown;
  auto painted = steady_clock::now();
  Input input = Input::kNoneYet;
  // To the end of what the pipe holds, also when it is over.
  while (input == Input::kMore || !over.stop_requested()) {
    input = ReadInput(pipe_, unshown);
    Show(TakeLines(unshown));
    const auto now = steady_clock::now();
    if (std::string standing = standing_(); standing.empty() || now - painted >= kRepaintTime) {
      painted = now;
      Stand(standing);
    }
    if (input == Input::kNoneYet) {
      ++timesSettled_;
    }
  }
  Stand("");
}

void Screen::Settle() {
  // The second time began after this call did.
  const unsigned settled = timesSettled_ + 2;
  while (timesSettled_ < settled) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void Screen::Show(const std::string& lines) {
  if (!lines.empty()) {
    stands_ = CutToWidth(Printable(standing_()), terminal_);
    Write(terminal_, Emptied(terminal_) + Printable(lines) + stands_);
    ++timesShown_;
  }
}

void Screen::Stand(const std::string& standing) {
  std::string line = CutToWidth(Printable(standing), terminal_);
  if (line != stands_) {
    stands_ = std::move(line);
    Write(terminal_, Emptied(terminal_) + stands_);
  }
}

}  // namespace lanvoss::program
