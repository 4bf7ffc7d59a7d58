#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <pthread.h>
#include <system_error>
#include <unistd.h>

#include "outcome.h"
#include "system.h"

namespace lanvoss::program {
namespace {

constexpr char kInterrupt = 'i';
constexpr char kEnd = 'e';

// Each byte in the pipe is an interrupt, or the end of taking interrupts.
int pipeOut = -1;
int pipeIn = -1;
std::atomic<bool> nextLeaves = false;

void Put(char byte) { static_cast<void>(!::write(pipeIn, &byte, 1)); }

// Runs on the thread that takes interrupts. All other threads block the signals, so that no signal
// ends a wait early.
extern "C" void OnInterrupt(int signal) {
  if (nextLeaves && signal == SIGINT) {
    std::_Exit(kExitAborted);
  }
  if (nextLeaves) {
    return;  // some programs send SIGTERM to a process and to its group, which is not impatience
  }
  const int error = errno;
  Put(kInterrupt);
  errno = error;
}

void MaskInterrupts(int how) {
  sigset_t interrupts;
  sigemptyset(&interrupts);
  sigaddset(&interrupts, SIGINT);
  sigaddset(&interrupts, SIGTERM);
  pthread_sigmask(how, &interrupts, nullptr);
}

}  // namespace

// Blocked in this thread and in all threads that it starts later.
void HoldInterrupts() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "no pipe for interrupts");
  }
  pipeOut = ends[0];
  pipeIn = ends[1];
  MaskInterrupts(SIG_BLOCK);
  std::signal(SIGINT, OnInterrupt);
  std::signal(SIGTERM, OnInterrupt);
}

bool TakeInterrupt() {
  MaskInterrupts(SIG_UNBLOCK);
  char byte = kEnd;
  while (::read(pipeOut, &byte, 1) == -1 && errno == EINTR) {
  }
  MaskInterrupts(SIG_BLOCK);
  return byte == kInterrupt;
}

void EndInterrupts() { Put(kEnd); }

void LetNextInterruptLeave(bool leave) {
  nextLeaves = leave;
  MaskInterrupts(leave ? SIG_UNBLOCK : SIG_BLOCK);
}

}  // namespace lanvoss::program
