// A line of input that the user can edit, at a terminal.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lanvoss::program {

class Session;

// Whether there is a terminal to edit at.
bool CanEdit();

class LineEditor {
 public:
  using Prompt = std::function<std::string()>;
  // The whole lines that the typed beginning of a line can become.
  using Completions = std::function<std::vector<std::string>(const std::string& line)>;

  // The prompt is asked for before each line.
  LineEditor(Session& session, Prompt prompt, Completions completions);
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;
  ~LineEditor();

  // Shows the prompt and waits for a line. Empty after an interrupt; none at the end of the input.
  std::optional<std::string> Next();

 private:
  class Terminal;  // each operating system has its own
  std::unique_ptr<Terminal> terminal_;
};

}  // namespace lanvoss::program
