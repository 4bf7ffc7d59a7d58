#include "run_command.h"

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "line_reader.h"
#include "link_check.h"
#include "operation.h"
#include "pause.h"

namespace lanvoss::program {
namespace {

std::string TextOf(const LinkCheck& check) {
  if (!check.replies) {
    return "no link to probe";
  }
  std::string text = "replies: " + std::to_string(*check.replies);
  if (check.recovery) {
    text += ", recovery: " + (check.addresses.empty() ? "no link" : check.addresses);
  }
  return text;
}

class Sequence {
 public:
  Sequence(LanvossInterface& object, std::stop_token interrupted)
      : object_(object), interrupted_(std::move(interrupted)) {}

  void Run(const Operation& operation) {
    const std::string result = ResultOf(operation);
    // In one piece: the log may grow at the same time.
    std::printf("> %s -> %s\n", operation.text.c_str(), result.c_str());
  }

  Outcome End() const {
    return lacksLink_ ? Outcome{kExitNotFound, {}, "a link did not come up"} : Outcome{};
  }

 private:
  std::string ResultOf(const Operation& operation) {
    using Kind = Operation::Kind;
    switch (operation.kind) {
      case Kind::kIp:
        return Ip(operation.request);
      case Kind::kPing:
        return TextOf(CheckLink(object_));
      case Kind::kDisconnect:
        return std::to_string(object_.DisConnect(""));
      case Kind::kUnpair:
        return std::to_string(object_.Unpair(operation.request));
      case Kind::kAbort:
        return std::to_string(object_.AbortConnect(""));
      case Kind::kWatch:
        return std::to_string(object_.StartWatch(operation.request));
      case Kind::kStop:
        return std::to_string(object_.StopWatch());
      case Kind::kSleep:
        return Pause(std::chrono::milliseconds(operation.sleepMs), interrupted_) ? "done"
                                                                                 : "interrupted";
    }
    return {};
  }

  std::string Ip(const std::string& request) {
    std::string addresses = object_.GetDeviceIp(request);
    if (addresses.empty()) {
      lacksLink_ = true;
      return "no link";
    }
    return addresses;
  }

  LanvossInterface& object_;
  const std::stop_token interrupted_;
  bool lacksLink_ = false;  // of an ip operation
};

bool IsSkipped(const std::string& line) {
  const std::string_view text = Trimmed(line);
  return text.empty() || text.starts_with('#');
}

// A bad line ends the run, after what stands before it has been done.
void RunInput(Sequence& sequence, const std::stop_token& interrupted) {
  LineReader input;
  std::size_t number = 0;
  while (const auto line = input.Next(interrupted)) {
    ++number;
    if (!IsSkipped(*line)) {
      sequence.Run(ParseOperation(*line, "line " + std::to_string(number)));
    }
  }
}

}  // namespace

Outcome RunOperations(LanvossInterface& object, const CommandLine& line,
                      std::stop_token interrupted) {
  Sequence sequence(object, interrupted);
  try {
    for (const Operation& operation : line.operations) {
      if (!interrupted.stop_requested()) {
        sequence.Run(operation);
      }
    }
    if (line.operations.empty()) {
      RunInput(sequence, interrupted);
    }
  } catch (const OperationError& error) {
    return {kExitUsage, {}, error.what()};
  }
  return sequence.End();
}

}  // namespace lanvoss::program
