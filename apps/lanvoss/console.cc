#include "console.h"

#include <atomic>
#include <cerrno>
#include <memory>
#include <system_error>

#include "screen.h"
#include "streams.h"

namespace lanvoss::program {
namespace {

// Written by the one thread that opens and closes the console.
struct Channels {
  std::atomic<std::FILE*> results = stdout;
  std::atomic<std::FILE*> complaints = stderr;
  std::unique_ptr<Screen> screen = {};  // where standard error is a terminal
};

// Never destroyed: the library may call its host late.
Channels& TheChannels() {
  static auto& channels = *new Channels;
  return channels;
}

// What goes to the terminal takes the way through the screen.
void OpenScreen(Channels& channels, const std::function<std::string()>& standing) {
  const Pipe pipe = IsTerminal(stderr) ? MakePipe() : Pipe{};
  if (pipe.in == nullptr) {
    return;
  }
  channels.screen = std::make_unique<Screen>(pipe.out, stderr, standing);
  channels.complaints = pipe.in;
  if (IsTerminal(stdout)) {
    channels.results = pipe.in;
  }
}

void LeadLogTo(const std::string& file) {
  std::FILE* stream = std::fopen(file.c_str(), "ab");
  if (stream == nullptr) {
    throw ConsoleError(file + ": " + std::generic_category().message(errno));
  }
  LeadOutputTo(stream);
  std::fclose(stream);
}

}  // namespace

void OpenConsole(const ConsoleOptions& options) {
  Channels& channels = TheChannels();
  if (options.log != ConsoleOptions::Log::kShown) {
    channels.results = DuplicateOutput();
  }
  OpenScreen(channels, options.standing);
  if (options.log == ConsoleOptions::Log::kKept) {
    LeadLogTo(options.logFile);
  } else if (options.log == ConsoleOptions::Log::kDropped) {
    LeadLogTo(kNowhere);
  } else if (channels.results != stdout) {
    LeadOutputTo(channels.results);
  }
}

// In one piece: the log may grow at the same time. No stream here keeps a line back.
void Print(const std::string& lines) { std::fprintf(TheChannels().results, "%s", lines.c_str()); }

void Complain(const std::string& text) {
  std::fprintf(TheChannels().complaints, "lanvoss: %s\n", text.c_str());
}

void CloseConsole() {
  Channels& channels = TheChannels();
  if (channels.screen == nullptr) {
    return;
  }
  std::fflush(stdout);
  LeadLogTo(kNowhere);
  channels.screen.reset();
  std::FILE* pipe = channels.complaints.exchange(stderr);
  channels.results.compare_exchange_strong(pipe, stderr);
}

void SettleConsole() {
  if (const auto& screen = TheChannels().screen; screen != nullptr) {
    std::fflush(stdout);
    screen->Settle();
  }
}

unsigned TimesShown() {
  const auto& screen = TheChannels().screen;
  return screen == nullptr ? 0 : screen->TimesShown();
}

}  // namespace lanvoss::program
