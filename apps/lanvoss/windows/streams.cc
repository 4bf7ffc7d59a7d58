#include "streams.h"

#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <io.h>
#include <windows.h>

namespace lanvoss::program {
namespace {

constexpr int kUsualWidth = 80;
constexpr unsigned kPipeLength = 65536;

// While it lives, the console reads and writes in the code page of the program's texts. The console
// is not the program's alone, so it gets its own back.
class AnsiConsole {
 public:
  AnsiConsole() {
    SetConsoleCP(GetACP());
    SetConsoleOutputCP(GetACP());
  }
  ~AnsiConsole() {
    SetConsoleCP(input_);
    SetConsoleOutputCP(output_);
  }
  AnsiConsole(const AnsiConsole&) = delete;
  AnsiConsole& operator=(const AnsiConsole&) = delete;

 private:
  const UINT input_ = GetConsoleCP();
  const UINT output_ = GetConsoleOutputCP();
};

HANDLE HandleOf(std::FILE* stream) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

// This runtime library takes line buffering for full buffering.
std::FILE* OpenUnbuffered(int file) {
  std::FILE* stream = _fdopen(file, "wb");
  std::setvbuf(stream, nullptr, _IONBF, 0);
  return stream;
}

}  // namespace

const char kNowhere[] = "NUL";

void PrepareStreams() {
  // Lines end as the program writes them, on every system.
  for (std::FILE* stream : {stdin, stdout, stderr}) {
    _setmode(_fileno(stream), _O_BINARY);
  }
  // This runtime library takes line buffering for full buffering.
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  static const AnsiConsole console;
}

bool IsTerminal(std::FILE* stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != FALSE;
}

int TerminalWidth(std::FILE* stream) {
  CONSOLE_SCREEN_BUFFER_INFO screen{};
  const bool isKnown = GetConsoleScreenBufferInfo(HandleOf(stream), &screen) != FALSE;
  return isKnown ? screen.dwSize.X : kUsualWidth;
}

std::FILE* DuplicateOutput() { return OpenUnbuffered(_dup(_fileno(stdout))); }

void LeadOutputTo(std::FILE* stream) {
  std::fflush(stdout);
  _dup2(_fileno(stream), _fileno(stdout));
}

Pipe MakePipe() {
  int ends[2] = {-1, -1};
  if (_pipe(ends, kPipeLength, _O_BINARY | _O_NOINHERIT) != 0) {
    return {};
  }
  return {OpenUnbuffered(ends[1]), ends[0]};
}

}  // namespace lanvoss::program
