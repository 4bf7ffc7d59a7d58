// The program's pairing of backends: real time, and the simulated neighbourhood that was chosen.
#pragma once

#include "scenario.h"

namespace lanvoss::program {

// To be called before the library's object is made; without it the built-in neighbourhood is there.
void UseScenario(Scenario scenario);

// Whether echo requests can be sent: always to simulated devices, otherwise if the system lets this
// process open raw sockets.
bool CanSendEchoes();

}  // namespace lanvoss::program
