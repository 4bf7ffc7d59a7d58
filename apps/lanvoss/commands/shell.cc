#include <exception>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands/table.h"
#include "line_editor.h"
#include "line_reader.h"
#include "screen.h"

namespace lanvoss::program {
namespace {

constexpr std::string_view kOwnWords[] = {"devices", "exit", "help", "quit"};
constexpr std::string_view kNamedWords[] = {"ip", "ip --direct", "unpair", "watch", "watch --keep"};

constexpr char kShellHelp[] =
    "  devices                        show the devices in the cache\n"
    "  exit, quit                     leave the shell; the end of the input does too\n"
    "Ctrl-C ends the operation that runs.\n";

// "lanvoss Cam-7F21> " while the link to it is up.
std::string Prompt(Session& session) {
  const std::optional<Link> link = session.Library().CurrentLink();
  return "lanvoss" + (link ? " " + Printable(link->name) : "") + "> ";
}

std::vector<std::string> AllLines(const Session& session) {
  std::vector<std::string> lines = OperationWords();
  lines.insert(lines.end(), std::begin(kOwnWords), std::end(kOwnWords));
  for (const std::string& name : session.CollectedNames()) {
    for (const std::string_view word : kNamedWords) {
      lines.push_back(std::string(word) + " " + Printable(name));
    }
  }
  return lines;
}

std::vector<std::string> Completions(const Session& session, const std::string& typed) {
  std::vector<std::string> lines = AllLines(session);
  std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(typed); });
  return lines;
}

void PrintOutcome(Session& session, const Outcome& outcome) {
  session.PrintResult(outcome.result, outcome.facts);
  if (!outcome.complaint.empty()) {
    session.Output().Complain(outcome.complaint);
  }
}

void RunLine(Session& session, const std::string& text) {
  try {
    const Operation operation = ParseOperation(text, "shell");
    session.Output().Print(RunOperation(session, operation).words + "\n");
  } catch (const std::exception& error) {  // of the operation's text or of the platform
    session.Output().Complain(error.what());
  }
}

// False: it was the last line.
bool TakeLine(Session& session, const std::string& text) {
  if (text == "exit" || text == "quit") {
    return false;
  }
  if (text == "help") {
    session.Output().Print(OperationHelp() + kShellHelp);
  } else if (text == "devices") {
    PrintOutcome(session, RunDevices(session));
  } else if (!IsComment(text)) {
    RunLine(session, text);
  }
  return true;
}

// `source` gives the lines.
template <class Source>
void TakeLines(Session& session, Source& source) {
  std::optional<std::string> text;
  do {
    session.RenewInterruption();
    // An operation that was given up may still be ending, but the last line is the user's now.
    session.ShowStatus("");
    session.Output().Settle();
    text = source.Next();
    session.ShowProgress();
  } while (text && TakeLine(session, *text));
}

}  // namespace

// Ends with the input or with "exit". An interrupt ends the operation that runs, not the shell.
Outcome RunShell(Session& session) {
  session.CollectNames();
  if (CanEdit()) {
    LineEditor editor(
        session, [&session] { return Prompt(session); },
        [&session](const std::string& typed) { return Completions(session, typed); });
    TakeLines(session, editor);
  } else {
    LineReader reader(session);
    TakeLines(session, reader);
  }
  return {};
}

}  // namespace lanvoss::program
