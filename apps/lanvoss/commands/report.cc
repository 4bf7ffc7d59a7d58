#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "commands/table.h"
#include "log/saved_log.h"
#include "report/masks.h"
#include "report/report_log.h"
#include "report/zip.h"
#include "system.h"

namespace lanvoss::program {
namespace {

using report::Masks;
using report::Member;
using Log = std::vector<log::Notification>;

// Of the administrator, on every machine.
constexpr char kNoOnesName[] = "root";

constexpr char kHowToGetLog[] =
    "No log is in it. Let the command that fails write one, and pack it:\n"
    "  lanvoss ip NAME --log run.log\n"
    "  lanvoss report --log run.log\n";

Log ReadNotifications(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  stream.peek();  // a directory can be opened, but not read
  if (!stream.is_open() || stream.bad()) {
    throw std::runtime_error(file + ": " + std::generic_category().message(errno));
  }
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  try {
    return log::ReadSavedLog(text).notifications;
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

std::vector<Log> ReadLogs(const CommandLine& line) {
  std::vector<Log> logs;
  if (line.logFile) {  // given before the command
    logs.push_back(ReadNotifications(*line.logFile));
  }
  for (const std::string& file : line.packedLogs) {
    logs.push_back(ReadNotifications(file));
  }
  return logs;
}

std::vector<Log> Masked(Masks& masks, std::vector<Log> logs) {
  for (Log& notifications : logs) {
    for (log::Notification& notification : notifications) {
      notification = masks.Mask(notification);
    }
  }
  return logs;
}

// "log.txt", "log-2.txt"
std::string MemberName(const std::string& base, std::size_t number, const char* ending) {
  return base + (number > 1 ? "-" + std::to_string(number) : "") + ending;
}

std::vector<Member> MembersOf(Session& session, const std::vector<Log>& logs) {
  Masks masks;
  masks.AddHost(HostName());
  if (const std::string user = UserName(); user != kNoOnesName) {
    masks.AddUser(user);
  }
  Masked(masks, logs);  // meets all names, so that they are masked wherever they are
  std::vector<Member> members = {
      {"version.txt", "lanvoss " LANVOSS_VERSION ", radio: " + session.TheRadio().name + "\n"},
      {"doctor.txt", masks.Mask(RunDoctor(session).result)}};
  std::size_t number = 0;
  for (const Log& notifications : Masked(masks, logs)) {
    ++number;
    members.push_back({MemberName("log", number, ".txt"), report::LogText(notifications)});
    members.push_back({MemberName("timeline", number, ".svg"), report::Picture(notifications)});
  }
  return members;
}

// Throws std::runtime_error. No part of a file is left.
void WriteNew(const std::string& file, const std::string& content) {
  std::error_code none;
  if (std::filesystem::exists(std::filesystem::symlink_status(file, none))) {
    throw std::runtime_error(file + " exists already; name another file");
  }
  std::ofstream stream(file, std::ios::binary);
  stream << content << std::flush;
  if (!stream) {
    const int error = errno;
    if (stream.is_open()) {
      stream.close();
      std::filesystem::remove(file, none);
    }
    throw std::runtime_error(file + ": " + std::generic_category().message(error));
  }
}

std::vector<std::string> NamesOf(const std::vector<Member>& members) {
  std::vector<std::string> names;
  names.reserve(members.size());
  for (const Member& member : members) {
    names.push_back(member.name);
  }
  return names;
}

std::string WhatIsIn(const std::string& file, const std::vector<std::string>& members,
                     bool hasLog) {
  std::string text = file + " has";
  for (const std::string& member : members) {
    text += (member == members.front() ? " " : ", ") + member;
  }
  return text + ".\nNames and addresses are masked. Look into it before you send it.\n" +
         (hasLog ? "" : kHowToGetLog);
}

}  // namespace

void AddReportOptions(CLI::App& command, CommandLine& line) {
  command.add_option("--log", line.packedLogs, "Pack this saved log; can be given several times")
      ->expected(1)
      ->take_all()
      ->type_name("FILE");
  command.add_option("FILE", line.reportFile, "The archive to write; default: lanvoss-report.zip")
      ->type_name("");
}

Outcome RunReport(Session& session) {
  const CommandLine& line = session.Line();
  try {
    const std::vector<Log> logs = ReadLogs(line);
    const std::vector<Member> members = MembersOf(session, logs);
    const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    WriteNew(line.reportFile, report::ZipOf(members, LocalTime(now)));
    const std::vector<std::string> names = NamesOf(members);
    return {.result = WhatIsIn(line.reportFile, names, !logs.empty()),
            .facts = JsonObject().AddText("file", line.reportFile).AddTexts("members", names)};
  } catch (const std::runtime_error& error) {
    return {kExitUsage, {}, error.what()};
  }
}

}  // namespace lanvoss::program
