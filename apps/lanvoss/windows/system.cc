#include "system.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <initializer_list>
#include <io.h>
#include <windows.h>

namespace lanvoss::program {
namespace {

constexpr TerminalSize kUsualSize = {.columns = 80, .rows = 24};
constexpr unsigned kPipeLength = 65536;
constexpr DWORD kPieceLength = 4096;
constexpr DWORD kLongestPath = 32'768;  // in characters, of any path of Windows

constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kDelete = 0x7F;

// ENABLE_VIRTUAL_TERMINAL_PROCESSING, which older headers lack.
constexpr DWORD kMovesCursor = 0x0004;

// While it exists, the console uses the code page of the program's texts, and obeys the sequences
// that move the cursor if it knows them. Other programs use the console too, so it gets its own
// settings back.
class AnsiConsole {
 public:
  AnsiConsole() {
    SetConsoleCP(GetACP());
    SetConsoleOutputCP(GetACP());
    if (GetConsoleMode(terminal_, &mode_) != FALSE) {
      SetConsoleMode(terminal_, mode_ | kMovesCursor);
    }
  }
  ~AnsiConsole() {
    SetConsoleCP(input_);
    SetConsoleOutputCP(output_);
    SetConsoleMode(terminal_, mode_);
  }
  AnsiConsole(const AnsiConsole&) = delete;
  AnsiConsole& operator=(const AnsiConsole&) = delete;

 private:
  const UINT input_ = GetConsoleCP();
  const UINT output_ = GetConsoleOutputCP();
  const HANDLE terminal_ = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode_ = 0;
};

HANDLE HandleOf(std::FILE* stream) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

// Empty when it is not set.
std::string Environment(const char* name) {
  std::string value(MAX_PATH, '\0');
  const DWORD length = GetEnvironmentVariableA(name, value.data(), MAX_PATH);
  value.resize(length < MAX_PATH ? length : 0);
  return value;
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

TerminalSize SizeOf(std::FILE* terminal) {
  CONSOLE_SCREEN_BUFFER_INFO screen{};
  if (GetConsoleScreenBufferInfo(HandleOf(terminal), &screen) == FALSE) {
    return kUsualSize;
  }
  const int rows = screen.srWindow.Bottom - screen.srWindow.Top + 1;
  return {static_cast<std::size_t>(screen.dwSize.X), static_cast<std::size_t>(rows)};
}

bool CanMoveCursor(std::FILE* terminal) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(terminal), &mode) != FALSE && (mode & kMovesCursor) != 0;
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

// In the code pages of the far east, characters of two bytes take two columns. In UTF-8, almost all
// those do that begin with kFirstWideLead or a higher byte.
CharacterSize FirstCharacter(std::string_view text) {
  constexpr unsigned char kFirstWideLead = 0xE3;
  const auto lead = static_cast<unsigned char>(text.front());
  if (GetACP() != CP_UTF8) {
    const std::size_t size = IsDBCSLeadByte(lead) != FALSE && text.size() > 1 ? 2 : 1;
    return {size, size};
  }
  const auto isContinuation = [](char byte) { return (byte & 0xC0) == 0x80; };
  const auto end = std::find_if_not(text.begin() + 1, text.end(), isContinuation);
  return {static_cast<std::size_t>(end - text.begin()), lead >= kFirstWideLead ? 2U : 1U};
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
  const std::string folder = Environment("LOCALAPPDATA");
  return folder.empty() ? "" : folder + "\\lanvoss";
}

std::filesystem::path ProgramFile() {
  std::wstring path(kLongestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
  return path;
}

std::string UserName() { return Environment("USERNAME"); }

// The program is not made to be a service here.
void TellServiceManager(const std::string& /*state*/) {}

std::string HostName() { return Environment("COMPUTERNAME"); }

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_s(&local, &time);
  return local;
}

}  // namespace lanvoss::program
