// The commands of the program. Each is in the file of its name.
#pragma once

#include "command_line.h"
#include "outcome.h"
#include "session.h"

namespace lanvoss::program {

// A command's own options, besides those of every command.
void AddIpOptions(CLI::App& command, CommandLine& line);
void AddKeepOptions(CLI::App& command, CommandLine& line);
void AddPingOptions(CLI::App& command, CommandLine& line);
void AddUnpairOptions(CLI::App& command, CommandLine& line);
void AddWatchOptions(CLI::App& command, CommandLine& line);
void AddScenarioOptions(CLI::App& command, CommandLine& line);
void AddRunOptions(CLI::App& command, CommandLine& line);
void AddReportOptions(CLI::App& command, CommandLine& line);
void AddTimelineOptions(CLI::App& command, CommandLine& line);
inline void AddNoOptions(CLI::App& /*command*/, CommandLine& /*line*/) {}

Outcome RunIp(Session& session);
Outcome RunPing(Session& session);
Outcome RunKeep(Session& session);
Outcome RunWatch(Session& session);
Outcome RunDisconnect(Session& session);
Outcome RunUnpair(Session& session);
Outcome RunDevices(Session& session);
Outcome RunRun(Session& session);
Outcome RunScenario(Session& session);
Outcome RunShell(Session& session);
Outcome RunTimeline(Session& session);
Outcome RunDoctor(Session& session);
Outcome RunReport(Session& session);

// Whether the command uses the library.
enum class Over { kLibrary, kNothing };

struct Command {
  const char* name;
  const char* help;
  void (*addOptions)(CLI::App& command, CommandLine& line);
  Outcome (*run)(Session& session);
  Over over;
};

inline constexpr Command kCommands[] = {
    {"ip", "Find a device, pair with it and connect; print the addresses as LOCAL,REMOTE",
     AddIpOptions, RunIp, Over::kLibrary},
    {"ping", "Connect to a device and send it echo requests; show their round-trip times",
     AddPingOptions, RunPing, Over::kLibrary},
    {"keep", "Keep a device connected until interrupted; print each change of the link",
     AddKeepOptions, RunKeep, Over::kLibrary},
    {"watch", "Show the devices in range, or look for one until it is found", AddWatchOptions,
     RunWatch, Over::kLibrary},
    {"disconnect", "Close the link to a device that a killed program has left", AddNameOption,
     RunDisconnect, Over::kNothing},
    {"unpair", "Find a device and remove its pairing from the system", AddUnpairOptions, RunUnpair,
     Over::kLibrary},
    {"devices", "Show the devices in the cache as a table", AddNoOptions, RunDevices,
     Over::kNothing},
    {"run", "Run several operations one after the other", AddRunOptions, RunRun, Over::kLibrary},
    {"shell", "Run operations as you type them; \"help\" lists them", AddNoOptions, RunShell,
     Over::kLibrary},
    {"scenario", "Show the files for --scenario that come with the program", AddScenarioOptions,
     RunScenario, Over::kNothing},
    {"timeline", "Draw a saved log: what happened when", AddTimelineOptions, RunTimeline,
     Over::kNothing},
    {"doctor", "Say what this machine lacks to reach devices, and how to fix it", AddNoOptions,
     RunDoctor, Over::kNothing},
    {"report", "Pack what a bug report needs into one file, with names and addresses masked",
     AddReportOptions, RunReport, Over::kNothing},
};

}  // namespace lanvoss::program
