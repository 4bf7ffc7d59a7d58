// The operations that `lanvoss run` and the shell run one after the other on one object.
#pragma once

#include <string>

#include "outcome.h"
#include "play/operation.h"

namespace lanvoss::program {

class Session;

using play::IsComment;
using play::Operation;
using play::OperationError;
using play::OperationHelp;
using play::OperationWords;
using play::ParseOperation;
using play::Verb;

struct OperationResult {
  std::string text;      // for scripts
  std::string words;     // for people
  Outcome failure = {};  // of an address request that gave no address, or an error
};

// An interrupt ends it early.
OperationResult RunOperation(Session& session, const Operation& operation);

}  // namespace lanvoss::program
