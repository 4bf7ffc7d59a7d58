#include "commands/run.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "commands/sequence.h"
#include "line_reader.h"
#include "operation.h"
#include "results.h"

namespace lanvoss::program {
namespace {

void DoAndTell(const CommandLine& line, Sequence& sequence, const Operation& operation,
               const std::stop_token& interrupted) {
  const std::string result = sequence.Do(operation, interrupted);
  // In one piece: the log may grow at the same time.
  PrintResult(line, "> " + operation.text + " -> " + result + "\n",
              Facts().AddText("operation", operation.text).AddText("result", result));
}

// A bad line ends the run, after what stands before it has been done.
void RunInput(const CommandLine& line, Sequence& sequence, const std::stop_token& interrupted) {
  LineReader input;
  std::size_t number = 0;
  while (const auto text = input.Next(interrupted)) {
    ++number;
    if (!IsComment(*text)) {
      const auto operation = ParseOperation(*text, "line " + std::to_string(number));
      DoAndTell(line, sequence, operation, interrupted);
    }
  }
}

}  // namespace

Outcome RunOperations(LanvossInterface& object, const CommandLine& line,
                      std::stop_token interrupted) {
  Sequence sequence(object);
  try {
    for (const Operation& operation : line.operations) {
      if (!interrupted.stop_requested()) {
        DoAndTell(line, sequence, operation, interrupted);
      }
    }
    if (line.operations.empty()) {
      RunInput(line, sequence, interrupted);
    }
  } catch (const OperationError& error) {
    return {kExitUsage, {}, error.what()};
  }
  return sequence.End();
}

}  // namespace lanvoss::program
