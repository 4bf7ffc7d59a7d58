#include "streams.h"

#include <clocale>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <sys/ioctl.h>
#include <unistd.h>

namespace lanvoss::program {
namespace {

constexpr int kUsualWidth = 80;

// A standard stream that the caller has closed would leave its number to the next file opened: the
// log would end up in the cache file.
void FillClosedStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) == -1) {
      static_cast<void>(::open(kNowhere, O_RDWR));  // takes the lowest free number: this one
    }
  }
}

std::FILE* OpenByLines(int file) {
  std::FILE* stream = ::fdopen(file, "w");
  std::setvbuf(stream, nullptr, _IOLBF, BUFSIZ);
  return stream;
}

}  // namespace

const char kNowhere[] = "/dev/null";

void PrepareStreams() {
  // The encoding of what is typed. NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread runs yet
  std::setlocale(LC_CTYPE, "");
  FillClosedStreams();
  std::signal(SIGPIPE, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

bool IsTerminal(std::FILE* stream) { return ::isatty(::fileno(stream)) != 0; }

int TerminalWidth(std::FILE* stream) {
  winsize size{};
  const bool isKnown = ::ioctl(::fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : kUsualWidth;
}

std::FILE* DuplicateOutput() {
  return OpenByLines(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

void LeadOutputTo(std::FILE* stream) {
  std::fflush(stdout);
  ::dup2(::fileno(stream), STDOUT_FILENO);
}

Pipe MakePipe() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    return {};
  }
  return {OpenByLines(ends[1]), ends[0]};
}

}  // namespace lanvoss::program
