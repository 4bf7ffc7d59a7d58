// The console lets the user edit a line, and keeps a history, by itself.
#include "line_editor.h"

#include <cstdio>
#include <utility>

#include "line_reader.h"
#include "session.h"
#include "system.h"

namespace lanvoss::program {

class LineEditor::Terminal {
 public:
  Terminal(Session& session, Prompt prompt)
      : session_(session), reader_(session), prompt_(std::move(prompt)) {}

  std::optional<std::string> Next() {
    std::fputs(prompt_().c_str(), stderr);
    auto line = reader_.Next();
    return session_.IsInterrupted() ? std::optional<std::string>("") : line;
  }

 private:
  Session& session_;
  LineReader reader_;
  const Prompt prompt_;
};

bool CanEdit() { return IsTerminal(stdin) && IsTerminal(stderr); }

LineEditor::LineEditor(Session& session, Prompt prompt, Completions /*completions*/)
    : terminal_(std::make_unique<Terminal>(session, std::move(prompt))) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::Next() { return terminal_->Next(); }

}  // namespace lanvoss::program
