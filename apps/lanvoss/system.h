// What each kind of system does in its own way: the standard streams, the interrupts, the code page
// and the local time.
#pragma once

#include <cstddef>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>

namespace lanvoss::program {

// To be called first of all. Makes the library's log appear line by line, also through a pipe, and
// lets the program go on when nobody reads it.
void PrepareStreams();

// The name of a file that forgets what is written to it.
extern const char kNullDevice[];

bool IsTerminal(std::FILE* stream);

// How many characters a line of the terminal `stream` takes.
int TerminalWidth(std::FILE* stream);

// Another stream to where standard output goes now, which appears line by line too. It stays there
// when standard output is redirected.
std::FILE* DuplicateStdout();

// Makes standard output go to where `stream` goes.
void RedirectStdout(std::FILE* stream);

struct Pipe {
  std::FILE* in = nullptr;  // none: the system gave no pipe
  int out = -1;             // the number of the file that it is to be read from
};

// It stays open until the program ends.
Pipe MakePipe();

// Waits for input from the file of number `file`, without a limit. False: it has ended.
bool ReadPiece(int file, std::string& piece);

// An interrupt is SIGINT or SIGTERM, or a console's Ctrl-C, Ctrl-Break and its closing. From now on
// they wait to be taken. To be called before any other thread is started.
void HoldInterrupts();

// Waits for an interrupt, without a limit; one thread does. False: EndInterrupts was called.
bool TakeInterrupt();
void EndInterrupts();

// Whether from now on an interrupt ends the process at once, with kExitAborted, or waits again to
// be taken. The thread that takes interrupts calls it.
void LetNextInterruptLeave(bool leave);

// Narrow texts are in the system's code page. This is how many bytes a control character at the
// beginning of `text` has; 0: there is none.
std::size_t ControlLength(std::string_view text);

// How many characters the text shows.
std::size_t CharactersIn(const std::string& text);

// What is no text in the code page is left to whoever takes it.
std::string ToUtf8(const std::string& text);

// A time of the system's clock in local time.
std::tm LocalTime(std::time_t time);

}  // namespace lanvoss::program
