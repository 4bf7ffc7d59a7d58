#include "streams.h"

#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <io.h>
#include <windows.h>

namespace lanvoss::program {
namespace {

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

}  // namespace

void PrepareStreams() {
  // Lines end as the program writes them, on every system.
  for (std::FILE* stream : {stdin, stdout, stderr}) {
    _setmode(_fileno(stream), _O_BINARY);
  }
  // This runtime library takes line buffering for full buffering.
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  static const AnsiConsole console;
}

}  // namespace lanvoss::program
