#include "system.h"

#include <array>
#include <fcntl.h>
#include <initializer_list>
#include <io.h>
#include <windows.h>

namespace lanvoss::program {
namespace {

constexpr int kUsualWidth = 80;
constexpr unsigned kPipeLength = 65536;
constexpr DWORD kPieceLength = 4096;
constexpr DWORD kLongestPath = 32'768;  // in characters, of any path of Windows

constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kDelete = 0x7F;

// While it exists, the console uses the code page of the program's texts. Other programs use the
// console too, so it gets its own code page back.
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

// This runtime library has no line buffering, only full buffering.
std::FILE* OpenUnbuffered(int file) {
  std::FILE* stream = _fdopen(file, "wb");
  std::setvbuf(stream, nullptr, _IONBF, 0);
  return stream;
}

}  // namespace

const char kNullDevice[] = "NUL";

void PrepareStreams() {
  // Lines end as the program writes them, on every system.
  for (std::FILE* stream : {stdin, stdout, stderr}) {
    _setmode(_fileno(stream), _O_BINARY);
  }
  // This runtime library has no line buffering, only full buffering.
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

std::FILE* DuplicateStdout() { return OpenUnbuffered(_dup(_fileno(stdout))); }

void RedirectStdout(std::FILE* stream) {
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

bool ReadPiece(int file, std::string& piece) {
  const auto input = reinterpret_cast<HANDLE>(_get_osfhandle(file));
  std::array<char, kPieceLength> buffer{};
  DWORD length = 0;
  do {
    SetLastError(ERROR_SUCCESS);
    if (ReadFile(input, buffer.data(), kPieceLength, &length, nullptr) == FALSE) {
      length = 0;
    }
    // Ctrl-C ends the reading of a console's line, but not the input.
  } while (length == 0 && GetLastError() == ERROR_OPERATION_ABORTED);
  piece.assign(buffer.data(), length);
  return length > 0;
}

// No other byte is a control character in every code page that Windows has.
std::size_t ControlLength(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text.front());
  return byte < kFirstPrintable || byte == kDelete ? 1 : 0;
}

std::size_t CharactersIn(const std::string& text) {
  return static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0));
}

std::string ToUtf8(const std::string& text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length)));
  const int wideLength = static_cast<int>(wide.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideLength, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideLength, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

std::string StateFolder() {
  std::string folder(MAX_PATH, '\0');
  const DWORD length = GetEnvironmentVariableA("LOCALAPPDATA", folder.data(), MAX_PATH);
  folder.resize(length < MAX_PATH ? length : 0);
  return folder.empty() ? "" : folder + "\\lanvoss";
}

std::filesystem::path ProgramFile() {
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
  return path;
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_s(&local, &time);
  return local;
}

}  // namespace lanvoss::program
