#include "commands/shell.h"

#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "commands/devices.h"
#include "commands/sequence.h"
#include "console.h"
#include "line_editor.h"
#include "line_reader.h"
#include "operation.h"
#include "results.h"
#include "texts.h"

namespace lanvoss::program {
namespace {

constexpr char kPrompt[] = "lanvoss> ";
constexpr std::string_view kOwnWords[] = {"devices", "exit", "help"};
constexpr std::string_view kNamedWords[] = {"ip", "ip --direct", "unpair", "watch", "watch --keep"};

constexpr char kShellHelp[] =
    "  devices                        show what is remembered\n"
    "  exit                           leave, as the end of the input does\n"
    "Ctrl-C ends the operation that runs.\n";

struct Names {
  std::mutex mutex;  // guards the names
  std::set<std::string> names;
};

// Never destroyed: the library may call its host late.
Names& TheNames() {
  static auto& names = *new Names;
  return names;
}

std::set<std::string> KnownNames() {
  Names& known = TheNames();
  const std::lock_guard lock(known.mutex);
  return known.names;
}

std::vector<std::string> AllLines() {
  std::vector<std::string> lines = OperationWords();
  lines.insert(lines.end(), std::begin(kOwnWords), std::end(kOwnWords));
  for (const std::string& name : KnownNames()) {
    for (const std::string_view word : kNamedWords) {
      lines.push_back(std::string(word) + " " + Printable(name));
    }
  }
  return lines;
}

std::vector<std::string> Completions(const std::string& typed) {
  std::vector<std::string> lines = AllLines();
  std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(typed); });
  return lines;
}

class Shell {
 public:
  Shell(LanvossInterface& object, const CommandLine& line, Interruption& interruption)
      : sequence_(object), line_(line), interruption_(interruption) {}

  // False: it was the last line.
  bool Take(const std::string& text) {
    if (text == "exit") {
      return false;
    }
    if (text == "help") {
      Print(std::string(kOperationHelp) + kShellHelp);
    } else if (text == "devices") {
      Tell(RunDevices(line_));
    } else if (!IsComment(text)) {
      Do(text);
    }
    return true;
  }

 private:
  void Do(const std::string& text) {
    try {
      const Operation operation = ParseOperation(text, "shell");
      const std::string result = sequence_.Do(operation, interruption_.Token());
      PrintResult(line_, result + "\n",
                  Facts().AddText("operation", operation.text).AddText("result", result));
    } catch (const std::exception& error) {  // of the operation's text, or of the platform
      Complain(error.what());
    }
  }

  void Tell(const Outcome& outcome) {
    PrintResult(line_, outcome.result, outcome.facts);
    if (!outcome.complaint.empty()) {
      Complain(outcome.complaint);
    }
  }

  Sequence sequence_;
  const CommandLine& line_;
  Interruption& interruption_;
};

using Source = std::function<std::optional<std::string>(const std::stop_token& interrupted)>;

void TakeLines(Shell& shell, Interruption& interruption, const Source& source) {
  std::optional<std::string> text;
  do {
    interruption.Renew();
    SettleConsole();
    text = source(interruption.Token());
  } while (text && shell.Take(*text));
}

}  // namespace

void HearNames(const Notification& notification) {
  if (notification.kind == "watch") {
    Names& known = TheNames();
    const std::lock_guard lock(known.mutex);
    known.names.insert(notification.message);
  }
}

Outcome RunShell(LanvossInterface& object, const CommandLine& line, Interruption& interruption) {
  Shell shell(object, line, interruption);
  if (CanEdit()) {
    LineEditor editor(kPrompt, Completions);
    TakeLines(shell, interruption, [&](const auto& token) { return editor.Next(token); });
  } else {
    LineReader reader;
    TakeLines(shell, interruption, [&](const auto& token) { return reader.Next(token); });
  }
  return {};
}

}  // namespace lanvoss::program
