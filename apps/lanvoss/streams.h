// The program's standard streams, as each kind of system has them.
#pragma once

#include <cstdio>

namespace lanvoss::program {

// To be called first of all. Makes the library's log appear line by line, also through a pipe, and
// lets the program go on when nobody reads it.
void PrepareStreams();

// The name of a file that forgets what is written to it.
extern const char kNowhere[];

bool IsTerminal(std::FILE* stream);

// How many characters a line of the terminal behind `stream` takes.
int TerminalWidth(std::FILE* stream);

// Another stream to where standard output goes now, which appears line by line too. It stays there
// when that is led elsewhere.
std::FILE* DuplicateOutput();

// Leads standard output to where `stream` goes.
void LeadOutputTo(std::FILE* stream);

struct Pipe {
  std::FILE* in = nullptr;  // none: the system gave no pipe
  int out = -1;             // the number of the file that it is to be read from
};

// It stays open until the program ends.
Pipe MakePipe();

}  // namespace lanvoss::program
