#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>
#include <vector>

#include "commands/table.h"
#include "line_reader.h"

namespace lanvoss::program {
namespace {

constexpr char kBeforeOperations[] =
    "Each OPERATION is one argument, as in: lanvoss run \"ip Cam-7F21\" ping disconnect\n"
    "Without one, operations are read from standard input, one per line. Blank lines and lines\n"
    "that begin with # are skipped. A NAME may contain blanks.\n"
    "\n";

constexpr char kAfterOperations[] =
    "\n"
    "After each operation, a line \"> OPERATION -> RESULT\" follows on standard output.\n";

// `latest` becomes the outcome of an operation that gave no link.
void RunAndPrint(Session& session, const Operation& operation, Outcome& latest) {
  const OperationResult result = RunOperation(session, operation);
  // In one write, because the log may grow at the same time.
  session.PrintResult(
      "> " + operation.text + " -> " + result.text + "\n",
      JsonObject().AddText("operation", operation.text).AddText("result", result.text));
  if (result.failure.exitCode != kExitOk) {
    latest = result.failure;
  }
}

// A bad line ends the run, after the lines before it.
void RunInput(Session& session, Outcome& latest) {
  LineReader input(session);
  std::size_t number = 0;
  while (const auto text = input.Next()) {
    ++number;
    if (!IsComment(*text)) {
      RunAndPrint(session, ParseOperation(*text, "line " + std::to_string(number)), latest);
    }
  }
}

}  // namespace

void AddRunOptions(CLI::App& command, CommandLine& line) {
  const auto parse = [&line](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      const std::string place = "operation " + std::to_string(line.operations.size() + 1);
      line.operations.push_back(ParseOperation(text, place));
    }
  };
  command
      .add_option_function<std::vector<std::string>>("OPERATION", parse, "What to run, see below")
      ->type_name("");
  command.footer(kBeforeOperations + OperationHelp() + kAfterOperations);
}

Outcome RunRun(Session& session) {
  Outcome latest;
  try {
    for (const Operation& operation : session.Line().operations) {
      if (!session.IsInterrupted()) {
        RunAndPrint(session, operation, latest);
      }
    }
    if (session.Line().operations.empty()) {
      RunInput(session, latest);
    }
  } catch (const OperationError& error) {
    return {kExitUsage, {}, error.what()};
  }
  return latest;
}

}  // namespace lanvoss::program
