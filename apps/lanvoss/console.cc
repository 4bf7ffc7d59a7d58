#include "console.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "system.h"

namespace lanvoss::program {
namespace {

void SendLogTo(const std::string& file) {
  std::FILE* stream = std::fopen(file.c_str(), "ab");
  if (stream == nullptr) {
    throw ConsoleError(file + ": " + std::generic_category().message(errno));
  }
  RedirectStdout(stream);
  std::fclose(stream);
}

}  // namespace

void Console::Open(const LogTarget& log, Screen::Calls calls) {
  if (log.kind != LogTarget::Kind::kShown) {
    results_ = DuplicateStdout();
  }
  OpenScreen(std::move(calls));
  if (log.kind == LogTarget::Kind::kFile) {
    SendLogTo(log.file);
  } else if (log.kind == LogTarget::Kind::kDropped) {
    SendLogTo(kNullDevice);
  } else if (results_ != stdout) {
    RedirectStdout(results_);
  }
}

// What goes to the terminal goes through the screen.
void Console::OpenScreen(Screen::Calls calls) {
  const Pipe pipe = IsTerminal(stderr) ? MakePipe() : Pipe{};
  if (pipe.in == nullptr) {
    return;
  }
  screen_ = std::make_unique<Screen>(pipe, stderr, std::move(calls));
  complaints_ = pipe.in;
  if (IsTerminal(stdout)) {
    results_ = pipe.in;
  }
}

// In one write, because the log may grow at the same time. No stream here holds back a line.
void Console::Print(const std::string& lines) { std::fprintf(results_, "%s", lines.c_str()); }

void Console::Complain(const std::string& text) {
  std::fprintf(complaints_, "lanvoss: %s\n", text.c_str());
}

void Console::Close() {
  if (screen_ == nullptr) {
    return;
  }
  std::fflush(stdout);
  SendLogTo(kNullDevice);
  screen_.reset();
  std::FILE* pipe = complaints_.exchange(stderr);
  results_.compare_exchange_strong(pipe, stderr);
}

void Console::Settle() {
  if (screen_ != nullptr) {
    std::fflush(stdout);
    screen_->Settle();
  }
}

void Console::Refresh() {
  if (screen_ != nullptr) {
    screen_->Refresh();
  }
}

bool Console::ShowsTables() const {
  return screen_ != nullptr && results_ == complaints_ && screen_->ShowsSeveralLines();
}

unsigned Console::TimesShown() const { return screen_ == nullptr ? 0 : screen_->TimesShown(); }

}  // namespace lanvoss::program
