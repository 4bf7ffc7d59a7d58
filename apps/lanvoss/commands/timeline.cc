#include "commands/timeline.h"

#include <cerrno>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

#include "timeline/saved_log.h"
#include "timeline/write_timeline.h"

namespace lanvoss::program {
namespace {

constexpr char kStandardInput[] = "-";

std::string ReadAll(std::istream& stream) { return {std::istreambuf_iterator<char>(stream), {}}; }

std::string ReadLog(const std::string& log) {
  if (log == kStandardInput) {
    return ReadAll(std::cin);
  }
  std::ifstream file(log, std::ios::binary);
  file.peek();  // a directory can be opened, but not read
  if (!file.is_open() || file.bad()) {
    throw std::runtime_error(std::generic_category().message(errno));
  }
  return ReadAll(file);
}

std::string DefaultFile(const std::string& log) {
  return log == kStandardInput ? "timeline.svg"
                               : std::filesystem::path(log).replace_extension(".svg").string();
}

}  // namespace

Outcome RunTimeline(const CommandLine& line) {
  const std::string& log = line.savedLog;
  std::vector<Notification> notifications;
  try {
    notifications = ReadSavedLog(ReadLog(log));
  } catch (const std::runtime_error& error) {
    return {kExitUsage, {}, log + ": " + error.what()};
  }
  const std::string file = line.timelineFile.value_or(DefaultFile(log));
  try {
    WriteTimeline(notifications, file);
  } catch (const std::runtime_error& error) {
    return {kExitUsage, {}, error.what()};
  }
  return {.result = file + "\n", .facts = Facts().AddText("file", file)};
}

}  // namespace lanvoss::program
