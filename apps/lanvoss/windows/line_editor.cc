// The console lets the user edit a line, and keeps a history, by itself.
#include "line_editor.h"

#include <cstdio>
#include <utility>

#include "line_reader.h"
#include "streams.h"

namespace lanvoss::program {

class LineEditor::Terminal {
 public:
  explicit Terminal(std::string prompt) : prompt_(std::move(prompt)) {}

  std::optional<std::string> Next(const std::stop_token& interrupted) {
    std::fputs(prompt_.c_str(), stderr);
    auto line = reader_.Next(interrupted);
    return interrupted.stop_requested() ? std::optional<std::string>("") : line;
  }

 private:
  const std::string prompt_;
  LineReader reader_;
};

bool CanEdit() { return IsTerminal(stdin) && IsTerminal(stderr); }

LineEditor::LineEditor(std::string prompt, Completions /*completions*/)
    : terminal_(std::make_unique<Terminal>(std::move(prompt))) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::Next(const std::stop_token& interrupted) {
  return terminal_->Next(interrupted);
}

}  // namespace lanvoss::program
