// The editor is libedit. It calls back plain functions, which find the object in its client data.
#include "line_editor.h"

#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <histedit.h>
#include <system_error>
#include <utility>

#include "input.h"
#include "session.h"
#include "system.h"

namespace lanvoss::program {
namespace {

constexpr int kHistoryLines = 1000;
constexpr int kOneCharacter = 1;  // what libedit's reader returns: the number of characters
constexpr int kNoCharacter = 0;

// The file with the lines of earlier shells; empty: there is none.
std::string HistoryFile() {
  const std::string folder = StateFolder();
  std::error_code refused;
  std::filesystem::create_directories(folder, refused);
  return folder.empty() || refused ? std::string() : folder + "/shell_history";
}

std::string CommonBeginning(const std::vector<std::string>& texts) {
  std::string beginning = texts.front();
  for (const std::string& text : texts) {
    while (!text.starts_with(beginning)) {
      beginning.pop_back();
    }
  }
  return beginning;
}

}  // namespace

class LineEditor::Terminal {
 public:
  Terminal(Session& session, Prompt prompt, Completions completions)
      : session_(session),
        input_(kStandardInput, session.Change()),
        makePrompt_(std::move(prompt)),
        completions_(std::move(completions)),
        historyFile_(HistoryFile()),
        editor_(el_init("lanvoss", stdin, stderr, stderr)),
        history_(history_init()) {
    HistEvent event;
    history(history_, &event, H_SETSIZE, kHistoryLines);
    history(history_, &event, H_SETUNIQUE, 1);
    if (!historyFile_.empty()) {
      history(history_, &event, H_LOAD, historyFile_.c_str());
    }
    el_set(editor_, EL_CLIENTDATA, this);
    el_set(editor_, EL_PROMPT, &CurrentPrompt);
    el_set(editor_, EL_EDITOR, "emacs");
    el_set(editor_, EL_HIST, history, history_);
    el_set(editor_, EL_GETCFN, &ReadCharacter);
    el_set(editor_, EL_ADDFN, "complete", "Complete the line", &Complete);
    el_set(editor_, EL_BIND, "^I", "complete", nullptr);
    el_source(editor_, nullptr);  // the user's settings, from ~/.editrc
  }

  ~Terminal() {
    HistEvent event;
    if (!historyFile_.empty()) {
      history(history_, &event, H_SAVE, historyFile_.c_str());
    }
    history_end(history_);
    el_end(editor_);
  }

  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  std::optional<std::string> Next() {
    timesShown_ = session_.Output().TimesShown();
    prompt_ = makePrompt_();
    int length = 0;
    const char* line = el_gets(editor_, &length);
    if (line == nullptr || length <= 0) {
      std::fputs("\n", stderr);
      return session_.IsInterrupted() ? std::optional<std::string>("") : std::nullopt;
    }
    std::string text(line, static_cast<std::size_t>(length));
    if (text.ends_with('\n')) {
      text.pop_back();
    }
    if (!text.empty()) {
      HistEvent event;
      history(history_, &event, H_ENTER, text.c_str());
    }
    return text;
  }

 private:
  static Terminal& Of(EditLine* editor) {
    void* terminal = nullptr;
    el_get(editor, EL_CLIENTDATA, &terminal);
    return *static_cast<Terminal*>(terminal);
  }

  static char* CurrentPrompt(EditLine* editor) { return Of(editor).prompt_.data(); }

  static int ReadCharacter(EditLine* editor, wchar_t* character) {
    return Of(editor).Read(*character);
  }

  static unsigned char Complete(EditLine* editor, int /*key*/) { return Of(editor).CompleteLine(); }

  // Waits for a typed character. Lines may scroll by meanwhile: then the line that is being typed
  // is drawn again below them.
  int Read(wchar_t& character) {
    std::mbstate_t state{};
    while (!session_.IsInterrupted()) {
      if (typed_.empty()) {
        const Input::State arrived = input_.Take(typed_);
        if (arrived == Input::State::kEnd) {
          return kNoCharacter;
        }
        if (arrived == Input::State::kNoneYet) {
          session_.Change()->Wait();
        }
        DrawAgain();
        continue;
      }
      const char byte = typed_.front();
      typed_.erase(0, 1);
      // NOLINTNEXTLINE(concurrency-mt-unsafe): it has a state of its own
      const std::size_t length = std::mbrtowc(&character, &byte, 1, &state);
      if (length <= 1) {
        return kOneCharacter;
      }
      if (length == static_cast<std::size_t>(-1)) {
        state = {};  // no character of this encoding: dropped
      }
    }
    return kNoCharacter;
  }

  void DrawAgain() {
    if (const unsigned shown = session_.Output().TimesShown(); shown != timesShown_) {
      timesShown_ = shown;
      el_set(editor_, EL_REFRESH);
    }
  }

  unsigned char CompleteLine() {
    const LineInfo* line = el_line(editor_);
    const std::string typed(line->buffer, line->cursor);
    const std::vector<std::string> lines = completions_(typed);
    if (lines.empty()) {
      return CC_ERROR;
    }
    const std::string common = CommonBeginning(lines);
    if (common.size() > typed.size()) {
      el_insertstr(editor_, common.substr(typed.size()).c_str());
      return CC_REFRESH;
    }
    for (const std::string& choice : lines) {
      session_.Output().Print(choice + "\n");
    }
    return CC_NORM;
  }

  Session& session_;
  Input input_;
  const Prompt makePrompt_;
  std::string prompt_;
  const Completions completions_;
  const std::string historyFile_;
  EditLine* const editor_;
  History* const history_;
  std::string typed_;  // and not taken yet
  unsigned timesShown_ = 0;
};

bool CanEdit() { return IsTerminal(stdin) && IsTerminal(stderr); }

LineEditor::LineEditor(Session& session, Prompt prompt, Completions completions)
    : terminal_(std::make_unique<Terminal>(session, std::move(prompt), std::move(completions))) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::Next() { return terminal_->Next(); }

}  // namespace lanvoss::program
