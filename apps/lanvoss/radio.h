// The radio that the program uses.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "backends/simulated/scenario.h"
#include "platform/finding.h"
#include "platform/platform.h"

namespace lanvoss::program {

// Needs no hardware and no rights.
inline constexpr char kSimulatedRadio[] = "simulated";

struct Radio {
  std::string name = {};       // kSimulatedRadio, or that of a real one
  std::string interface = {};  // of the real radio; empty: the first one that there is
  std::string remark = {};     // for the user, when the program has chosen; empty: nothing to say
};

// The names to choose from on this system, as a text for people.
std::string RadioNames();
bool IsRadioName(const std::string& name);

// The radio of that name; without a name the system's default.
Radio ChooseRadio(const std::optional<std::string>& radioName);
Radio SimulatedRadio();

// A scenario is for the simulated radio.
platform::Platform CreatePlatform(const Radio& radio,
                                  const std::optional<simulated::Scenario>& scenario);

// Closes the links to a device that earlier processes have left. False: there was none.
bool CloseLeftOverLinks(const Radio& radio, const std::string& name);

// What the real radio needs on this machine, and whether it is there. The name may choose one.
std::vector<platform::Finding> Examine(const std::optional<std::string>& radioName);

// How the user gives the program the right to open raw sockets. The echo probe needs it.
std::string HowToAllowRawSockets();

}  // namespace lanvoss::program
