// What the user or the system interrupts the program with: SIGINT and SIGTERM, or a console's
// Ctrl-C, Ctrl-Break and its closing.
#pragma once

#include <stop_token>

namespace lanvoss::program {

// From now on interrupts wait to be taken. To be called before any other thread is started.
void HoldInterrupts();

// Waits for an interrupt. False: `over` was requested first.
bool TakeInterrupt(const std::stop_token& over);

// Whether from now on an interrupt ends the process at once, with kExitAborted, or waits again to
// be taken.
void LetNextInterruptLeave(bool leave);

}  // namespace lanvoss::program
