#include "commands/sequence.h"

#include <chrono>

#include "commands/link_check.h"
#include "commands/no_link.h"
#include "pause.h"
#include "situation.h"

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

}  // namespace

std::string Sequence::Do(const Operation& operation, const std::stop_token& interrupted) {
  using enum Operation::Kind;
  switch (operation.kind) {
    case kIp:
      return Ip(operation.request);
    case kPing:
      return TextOf(CheckLink(object_));
    case kDisconnect:
      return std::to_string(object_.DisConnect(""));
    case kUnpair:
      return std::to_string(object_.Unpair(operation.request));
    case kAbort:
      return std::to_string(object_.AbortConnect(""));
    case kWatch:
      return std::to_string(object_.StartWatch(operation.request));
    case kStop:
      return std::to_string(object_.StopWatch());
    case kSleep:
      return Pause(std::chrono::milliseconds(operation.sleepMs), interrupted) ? "done"
                                                                              : "interrupted";
  }
  return {};
}

std::string Sequence::Ip(const std::string& request) {
  const UnderWay underWay;
  std::string addresses = object_.GetDeviceIp(request);
  if (addresses.empty()) {
    end_ = NoLink(request.substr(request.rfind('\n') + 1));
    return "no link";
  }
  return addresses;
}

}  // namespace lanvoss::program
