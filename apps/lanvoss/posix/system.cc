#include "system.h"

#include <algorithm>
#include <array>
#include <climits>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cwchar>
#include <fcntl.h>
#include <initializer_list>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace lanvoss::program {
namespace {

constexpr TerminalSize kUsualSize = {.columns = 80, .rows = 24};
constexpr std::size_t kPieceLength = 4096;

constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kDelete = 0x7F;
// The second set of control characters, which terminals obey too: 0xC2 and one of these.
constexpr unsigned char kSecondSetLead = 0xC2;
constexpr unsigned char kSecondSetFirst = 0x80;
constexpr unsigned char kSecondSetLast = 0x9F;

// If the caller has closed a standard stream, the next opened file would get its number: the log
// would go into the cache file.
void FillClosedStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) == -1) {
      static_cast<void>(::open(kNullDevice, O_RDWR));  // takes the lowest free number: this one
    }
  }
}

std::FILE* OpenByLines(int file) {
  std::FILE* stream = ::fdopen(file, "w");
  std::setvbuf(stream, nullptr, _IOLBF, BUFSIZ);
  return stream;
}

unsigned char ByteAt(std::string_view text, std::size_t position) {
  return static_cast<unsigned char>(text[position]);
}

// Empty when it is not set.
std::string Environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody sets it
  return value == nullptr ? "" : value;
}

}  // namespace

const char kNullDevice[] = "/dev/null";

void PrepareStreams() {
  // The encoding of typed text. NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread runs yet
  std::setlocale(LC_CTYPE, "");
  FillClosedStreams();
  std::signal(SIGPIPE, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

bool IsTerminal(std::FILE* stream) { return ::isatty(::fileno(stream)) != 0; }

TerminalSize SizeOf(std::FILE* terminal) {
  winsize size{};
  const bool isKnown =
      ::ioctl(::fileno(terminal), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
  return isKnown ? TerminalSize{size.ws_col, size.ws_row} : kUsualSize;
}

bool CanMoveCursor(std::FILE* terminal) {
  const std::string kind = Environment("TERM");
  return IsTerminal(terminal) && !kind.empty() && kind != "dumb";
}

std::FILE* DuplicateStdout() {
  return OpenByLines(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

void RedirectStdout(std::FILE* stream) {
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

bool ReadPiece(int file, std::string& piece) {
  std::array<char, kPieceLength> buffer{};
  const ssize_t length = ::read(file, buffer.data(), buffer.size());
  if (length <= 0) {
    return false;
  }
  piece.assign(buffer.data(), static_cast<std::size_t>(length));
  return true;
}

std::size_t ControlLength(std::string_view text) {
  if (ByteAt(text, 0) < kFirstPrintable || ByteAt(text, 0) == kDelete) {
    return 1;
  }
  const bool isOfSecondSet = text.size() > 1 && ByteAt(text, 0) == kSecondSetLead &&
                             ByteAt(text, 1) >= kSecondSetFirst &&
                             ByteAt(text, 1) <= kSecondSetLast;
  return isOfSecondSet ? 2 : 0;
}

// Names are in UTF-8, whatever the user's encoding is.
CharacterSize FirstCharacter(std::string_view text) {
  wchar_t character = 0;
  std::mbstate_t state{};
  // NOLINTNEXTLINE(concurrency-mt-unsafe): it has a state of its own
  const std::size_t bytes = std::mbrtowc(&character, text.data(), text.size(), &state);
  if (bytes > 0 && bytes <= text.size()) {
    return {bytes, static_cast<std::size_t>(std::max(::wcwidth(character), 0))};
  }
  const auto isContinuation = [](char byte) { return (byte & 0xC0) == 0x80; };
  const auto end = std::find_if_not(text.begin() + 1, text.end(), isContinuation);
  const auto length = static_cast<std::size_t>(end - text.begin());
  return {length, length > 2 ? 2U : 1U};
}

std::string ToUtf8(const std::string& text) { return text; }

std::string StateFolder() {
  if (const std::string state = Environment("XDG_STATE_HOME"); !state.empty()) {
    return state + "/lanvoss";
  }
  const std::string home = Environment("HOME");
  return home.empty() ? "" : home + "/.local/state/lanvoss";
}

std::filesystem::path ProgramFile() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown);
}

std::string UserName() { return Environment("USER"); }

std::string HostName() {
  std::array<char, HOST_NAME_MAX + 1> name{};
  return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

// The protocol of systemd: one datagram. A manager that does not listen is no failure of ours.
void TellServiceManager(const std::string& state) {
  const std::string path = Environment("NOTIFY_SOCKET");
  sockaddr_un manager{.sun_family = AF_UNIX, .sun_path = {}};
  if (path.empty() || path.size() >= sizeof manager.sun_path) {
    return;
  }
  path.copy(manager.sun_path, path.size());
  if (path.front() == '@') {
    manager.sun_path[0] = '\0';  // a name that is in no folder
  }
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
  const int file = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ::sendto(file, state.data(), state.size(), MSG_NOSIGNAL, reinterpret_cast<sockaddr*>(&manager),
           length);
  ::close(file);
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

}  // namespace lanvoss::program
