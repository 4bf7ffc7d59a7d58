// The commands of the program. Each is in the file of its name.
#pragma once

#include "command_line.h"
#include "outcome.h"
#include "session.h"

namespace lanvoss::program {

// A command's own options, besides those that go with every command.
void AddIpOptions(CLI::App& command, CommandLine& line);
void AddKeepOptions(CLI::App& command, CommandLine& line);
void AddWatchOptions(CLI::App& command, CommandLine& line);
void AddRunOptions(CLI::App& command, CommandLine& line);
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
Outcome RunShell(Session& session);
Outcome RunTimeline(Session& session);
Outcome RunDoctor(Session& session);

// Whether it runs over an object of the library.
enum class Over { kObject, kNothing };

struct Command {
  const char* name;
  const char* help;
  void (*addOptions)(CLI::App& command, CommandLine& line);
  Outcome (*run)(Session& session);
  Over over;
};

inline constexpr Command kCommands[] = {
    {"ip", "Find, pair and connect a device; print the addresses of the link as LOCAL,REMOTE",
     AddIpOptions, RunIp, Over::kObject},
    {"ping", "Connect a device, check the link, and connect anew what no longer answers",
     AddNameOption, RunPing, Over::kObject},
    {"keep", "Keep a device connected until interrupted; print each change of the link",
     AddKeepOptions, RunKeep, Over::kObject},
    {"watch", "Print the devices that are there, or look for one until it is found",
     AddWatchOptions, RunWatch, Over::kObject},
    {"disconnect", "Take the link to a device over, or make it, and close it", AddNameOption,
     RunDisconnect, Over::kObject},
    {"unpair", "Look for a device and make the system forget its pairing", AddNameOption, RunUnpair,
     Over::kObject},
    {"devices", "Show the devices of the cache as a table", AddNoOptions, RunDevices,
     Over::kNothing},
    {"run", "Do several operations one after the other", AddRunOptions, RunRun, Over::kObject},
    {"shell", "Do operations as they are typed; \"help\" tells which", AddNoOptions, RunShell,
     Over::kObject},
    {"timeline", "Draw what a saved log tells: what happened when", AddTimelineOptions, RunTimeline,
     Over::kNothing},
    {"doctor", "Say what this machine lacks for reaching devices, and how to mend it", AddNoOptions,
     RunDoctor, Over::kNothing},
};

}  // namespace lanvoss::program
