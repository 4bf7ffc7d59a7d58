// What each operating system does in its own way: standard streams, interrupts, the code page,
// local time and the place of the program.
#pragma once

#include <cstddef>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>

namespace lanvoss::program {

// Must be called first. Makes the library's log appear line by line, also through a pipe, and lets
// the program continue when nobody reads the log.
void PrepareStreams();

// The file that drops everything written to it.
extern const char kNullDevice[];

bool IsTerminal(std::FILE* stream);

struct TerminalSize {
  std::size_t columns;  // at least 1
  std::size_t rows;
};

TerminalSize SizeOf(std::FILE* terminal);

// Whether the terminal obeys the usual sequences that move the cursor up and empty lines.
bool CanMoveCursor(std::FILE* terminal);

// Another stream to the present target of standard output, also line by line. It keeps this target
// when standard output is redirected.
std::FILE* DuplicateStdout();

// Gives standard output the target of `stream`.
void RedirectStdout(std::FILE* stream);

struct Pipe {
  std::FILE* in = nullptr;  // none: the system gave no pipe
  int out = -1;             // the file number to read from
};

// It stays open until the program ends.
Pipe MakePipe();

// Waits for input from the file of number `file`, without a limit. False: it has ended.
bool ReadPiece(int file, std::string& piece);

// An interrupt is SIGINT or SIGTERM; on a console Ctrl-C, Ctrl-Break or its closing. After this
// call interrupts wait to be taken. Must be called before any other thread is started.
void HoldInterrupts();

// Waits for an interrupt, without a limit; one thread does. False: EndInterrupts was called.
bool TakeInterrupt();
void EndInterrupts();

// true: the next interrupt, if it is no SIGTERM, ends the process at once, with kExitAborted.
// false: interrupts wait to be taken again. Called by the thread that takes interrupts.
void LetNextInterruptLeave(bool leave);

// The number of bytes of a control character at the beginning of `text`; 0: there is none. Narrow
// texts are in the system's code page.
std::size_t ControlLength(std::string_view text);

struct CharacterSize {
  std::size_t bytes;    // at least 1
  std::size_t columns;  // on a terminal: 0, 1 or 2
};

// Of the first character of a text that is not empty.
CharacterSize FirstCharacter(std::string_view text);

// Bytes that are invalid in the code page may remain.
std::string ToUtf8(const std::string& text);

// The folder for what the program keeps of the user's from run to run; empty: there is none.
std::string StateFolder();

// The file of this program.
std::filesystem::path ProgramFile();

// The names that the system has for the user and for this machine; empty: unknown.
std::string UserName();
std::string HostName();

// Tells the service manager that has started the program, if there is one, the state of the
// service: lines of the form NAME=VALUE.
void TellServiceManager(const std::string& state);

// A time of the system's clock in local time.
std::tm LocalTime(std::time_t time);

}  // namespace lanvoss::program
