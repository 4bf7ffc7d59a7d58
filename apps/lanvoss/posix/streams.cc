#include "streams.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace lanvoss::program {
namespace {

// A standard stream that the caller has closed would leave its number to the next file opened: the
// log would end up in the cache file.
void FillClosedStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) == -1) {
      static_cast<void>(::open("/dev/null", O_RDWR));  // takes the lowest free number: this one
    }
  }
}

}  // namespace

void PrepareStreams() {
  FillClosedStreams();
  std::signal(SIGPIPE, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

}  // namespace lanvoss::program
