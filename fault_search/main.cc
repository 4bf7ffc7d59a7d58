// Searches for cases in which the library breaks one of its rules.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "output.h"
#include "player.h"
#include "shrink.h"
#include "test_case.h"

namespace lanvoss::search {
namespace {

constexpr int kExitViolation = 1;
// In real time. A case that takes longer hangs.
constexpr unsigned kCaseLimitS = 60;

struct Options {
  std::uint64_t seeds = 0;
  std::uint64_t seed = 1;
  bool free = false;
};

struct Sums {
  std::uint64_t cases = 0;
  std::uint64_t calls = 0;
  std::uint64_t faults = 0;
  std::uint64_t operations = 0;
  std::uint64_t linkUps = 0;
  std::int64_t virtualMs = 0;
  std::int32_t mostToLinkMs = 0;
  std::map<unsigned, unsigned> requests;
  std::map<std::string, unsigned> reasons;
};

std::atomic<std::uint64_t> playing = 0;

// A deadlock on virtual time, a crash, or no end in real time.
extern "C" void PrintSeed(int signal) {
  char text[] = "the case of this seed does not end well: ....................\n";
  std::uint64_t seed = playing;
  for (std::size_t digit = sizeof text - 2; text[--digit] == '.'; seed /= 10) {
    text[digit] = static_cast<char>('0' + seed % 10);
  }
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, sizeof text - 1);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void Add(const Report& report, Sums& sums) {
  ++sums.cases;
  sums.calls += report.calls;
  sums.faults += report.faults;
  sums.operations += report.operations;
  sums.linkUps += report.linkUps;
  sums.virtualMs += report.virtualMs;
  sums.mostToLinkMs = std::max(sums.mostToLinkMs, report.toLinkMs);
  ++sums.requests[report.requests];
  for (const auto& [reason, count] : report.reasons) {
    sums.reasons[reason] += count;
  }
}

void Say(const Lines& lines) {
  for (const std::string& line : lines) {
    search::Say("  " + line);
  }
}

void SayCase(const TestCase& testCase, const Report& report) {
  search::Say("the case:");
  Say(Describe(testCase));
  search::Say("what happened:");
  Say(report.events);
  search::Say(report.violations.empty() ? "no rule was broken" : "broken rules:");
  Say(report.violations);
}

void SaySums(const Sums& sums, std::chrono::steady_clock::duration took) {
  constexpr double kMsPerHour = 3'600'000.0;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(took).count();
  const auto text = [](auto number) { return std::to_string(number); };
  search::Say(text(sums.cases) + " cases in " + text(seconds) + " s, " +
              text(static_cast<std::int64_t>(static_cast<double>(sums.virtualMs) / kMsPerHour)) +
              " virtual hours, " + text(sums.operations) + " operations, " + text(sums.calls) +
              " calls to the radio, " + text(sums.faults) + " of them failed or late, " +
              text(sums.linkUps) + " links up");
  search::Say("  the longest way back to a link: " + text(sums.mostToLinkMs) + " ms");
  for (const auto& [requests, cases] : sums.requests) {
    search::Say("  a link after " + text(requests) + " requests: " + text(cases) + " cases");
  }
  for (const auto& [reason, count] : sums.reasons) {
    search::Say("  no link at once, " + text(count) + " times: " + reason);
  }
}

Report PlaySeed(const TestCase& testCase, bool free) {
  playing = testCase.seed;
  alarm(kCaseLimitS);
  const Report report = Play(testCase, free);
  alarm(0);
  return report;
}

int Search(const Options& options) {
  search::Say("cases of the seeds " + std::to_string(options.seed) + " to " +
              std::to_string(options.seed + options.seeds - 1));
  const auto begun = std::chrono::steady_clock::now();
  Sums sums;
  for (std::uint64_t seed = options.seed; seed < options.seed + options.seeds; ++seed) {
    const TestCase testCase = GenerateCase(seed);
    const Report report = PlaySeed(testCase, options.free);
    Add(report, sums);
    if (!report.violations.empty()) {
      SaySums(sums, std::chrono::steady_clock::now() - begun);
      search::Say("seed " + std::to_string(seed) + " breaks a rule: " + report.violations.front());
      const TestCase shortest = Shrink(testCase, options.free);
      SayCase(shortest, PlaySeed(shortest, options.free));
      return kExitViolation;
    }
  }
  SaySums(sums, std::chrono::steady_clock::now() - begun);
  return 0;
}

int PlayOne(const Options& options) {
  const TestCase testCase = GenerateCase(options.seed);
  const Report report = PlaySeed(testCase, options.free);
  SayCase(testCase, report);
  return report.violations.empty() ? 0 : kExitViolation;
}

int Main(int argc, char** argv) {
  CLI::App app("Searches for cases in which the library breaks one of its rules.");
  Options options;
  app.add_option("--seeds", options.seeds,
                 "Play so many cases; without it one is played and shown");
  app.add_option("--seed", options.seed, "The first one");
  app.add_flag("--free", options.free, "Let the threads run side by side");
  CLI11_PARSE(app, argc, argv);
  for (const int signal : {SIGABRT, SIGALRM, SIGSEGV}) {
    std::signal(signal, PrintSeed);
  }
  TheOutput();
  return options.seeds > 0 ? Search(options) : PlayOne(options);
}

}  // namespace
}  // namespace lanvoss::search

int main(int argc, char** argv) { return lanvoss::search::Main(argc, argv); }
