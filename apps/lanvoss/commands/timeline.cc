#include <CLI/CLI.hpp>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

#include "commands/table.h"
#include "log/saved_log.h"
#include "timeline/write_timeline.h"

namespace lanvoss::program {
namespace {

constexpr char kFromStandardInput[] = "-";

std::string ReadAll(std::istream& stream) { return {std::istreambuf_iterator<char>(stream), {}}; }

std::string ReadLog(const std::string& log) {
  if (log == kFromStandardInput) {
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
  return log == kFromStandardInput ? "timeline.svg"
                                   : std::filesystem::path(log).replace_extension(".svg").string();
}

}  // namespace

void AddTimelineOptions(CLI::App& command, CommandLine& line) {
  command
      .add_option("LOG", line.savedLog, "A log of this program or of a host; - for standard input")
      ->required()
      ->type_name("");
  command
      .add_option("FILE", line.timelineFile,
                  "The picture (.svg) or trace (.json) to write; default: LOG's name with .svg")
      ->type_name("");
}

Outcome RunTimeline(Session& session) {
  const CommandLine& line = session.Line();
  const std::string& file = line.savedLog;
  log::SavedLog saved;
  try {
    saved = log::ReadSavedLog(ReadLog(file));
  } catch (const std::runtime_error& error) {
    return {kExitUsage, {}, file + ": " + error.what()};
  }
  const std::string picture = line.timelineFile.value_or(DefaultFile(file));
  try {
    timeline::WriteTimeline(saved, picture);
  } catch (const std::runtime_error& error) {
    return {kExitUsage, {}, error.what()};
  }
  const std::string reading = line.quiet ? "" : timeline::ReadingOf(saved);
  return {.result = (reading.empty() ? "" : reading + "\n") + picture + "\n",
          .facts = JsonObject()
                       .AddText("file", picture)
                       .AddNumber("lines", static_cast<int>(saved.lines))
                       .AddNumber("understood", static_cast<int>(saved.notifications.size()))};
}

}  // namespace lanvoss::program
