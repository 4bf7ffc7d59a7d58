#include "ip_command.h"

#include <string>

namespace lanvoss::program {
namespace {

std::string RequestOf(const CommandLine& line) {
  if (line.gapMs) {
    return std::to_string(*line.gapMs) + "\n" + *line.name;
  }
  return line.direct ? "\n" + *line.name : *line.name;
}

}  // namespace

Outcome RunIp(LanvossInterface& object, const CommandLine& line) {
  const std::string addresses = object.GetDeviceIp(RequestOf(line));
  if (addresses.empty()) {
    return {kExitNotFound, {}, "no link to " + *line.name};
  }
  return {kExitOk, addresses + "\n"};
}

}  // namespace lanvoss::program
