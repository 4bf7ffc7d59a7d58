#include <atomic>
#include <cstdlib>
#include <windows.h>

#include "outcome.h"
#include "system.h"

namespace lanvoss::program {
namespace {

const HANDLE interrupted = CreateEventW(nullptr, TRUE, FALSE, nullptr);
const HANDLE ended = CreateEventW(nullptr, TRUE, FALSE, nullptr);
std::atomic<bool> nextLeaves = false;

// The system ends the process when the handler of any other kind returns.
bool IsFromKeyboard(DWORD kind) { return kind == CTRL_C_EVENT || kind == CTRL_BREAK_EVENT; }

// Runs on a thread that the system makes for it.
BOOL WINAPI OnInterrupt(DWORD kind) {
  if (nextLeaves) {
    std::_Exit(kExitAborted);
  }
  SetEvent(interrupted);
  if (!IsFromKeyboard(kind)) {
    Sleep(INFINITE);  // until the program has ended, or the system ends it
  }
  return TRUE;
}

}  // namespace

void HoldInterrupts() { SetConsoleCtrlHandler(OnInterrupt, TRUE); }

bool TakeInterrupt() {
  const HANDLE events[] = {interrupted, ended};
  return WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0;
}

void EndInterrupts() { SetEvent(ended); }

void LetNextInterruptLeave(bool leave) {
  if (!leave) {
    ResetEvent(interrupted);
  }
  nextLeaves = leave;
}

}  // namespace lanvoss::program
